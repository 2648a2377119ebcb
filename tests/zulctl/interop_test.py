"""zulctl and a router on another maker's DDS stack: every command, as text and as JSON; exact bytes out, answers of either byte order in."""

import os

import wire
from control import ControlTest, rows_of
from cyclone import CycloneRouter
from processes import Program

ROUTER = "r\xfc 1"
GREETING, DESCRIPTION, DUMMY, NAME, PEERS = 9, 1, 2, 3, 4
TEXT = "<!-- \xe9 ' \" & -->" * 500
SNIPPET = '<session><s><p> 5</p></s></session>'
LIBRARY = '<adapter_library name="L"><adapter_plugin name="P"><library_file>l</library_file><factory_function>f</factory_function>' \
          '</adapter_plugin></adapter_library>'
RUNNING = f'<dds>{LIBRARY}<routing_service name="S"><domain_route name="D"><connection_1 plugin_name="L::P"/>' \
          '<connection_2 plugin_name="L::P"/></domain_route></routing_service></dds>'
STOPPED = RUNNING.replace('"D"', '"D" enabled="false"')
ODD, STOPPED_ODD = (text.replace('"S"', '"S" enabled="later"') for text in (RUNNING, STOPPED))  # as only its router knows
GET = 13, DUMMY, 0
ENABLE = (7, NAME, "D"), "enabled D"


def upload(kind, name, xml):
    """The requests that carry a text, in pieces; the last one is answered."""
    url = f'str://"{xml}"'
    pieces = [url[at:at + 4096] for at in range(0, len(url), 4096)]
    return [((kind, DESCRIPTION, name, piece is pieces[-1], piece), f"did {kind}" if piece is pieces[-1] else "") for piece in pieces]


def command(words, request, answer="part 1, part 2"):
    last = {"command": words.split()[0], "status": "ok", "message": answer, "parts": 2}
    return words.split(), [(request, answer)], 0, answer, last


def uploads(words, xml, *asked):
    """`xml` is the last argument."""
    return [*words.split(), xml], asked, 0, asked[-1][1], {"status": "ok", "message": asked[-1][1], "parts": 2}


# Arguments, in which R is the router; requests with their answers; exit status; of the text; of the last row of JSON.
TABLE = (
    (["enable", "R", "d 1\xff"], [((7, NAME, "d 1\xff"), "on")], 0, r"r\\xfc 1: on\n", {"status": "ok", "entity": "d 1\ufffd", "parts": 2}),
    command("disable R", (8, NAME, "")),
    command("pause R d", (5, NAME, "d")),
    command("resume R d", (6, NAME, "d")),
    command("delete R d", (11, NAME, "d")),
    command("get R", GET),
    command("save R", (12, DUMMY, 0)),
    command("unload R", (2, DUMMY, 0)),
    command("add-peer R d p1 a b,c", (14, PEERS, "d", True, ["a", "b,c"])),
    command("load R c --remote-file /a/b", (1, DESCRIPTION, "c", True, "file:///a/b")),
    command("update R --set session.s.p=5", (4, DESCRIPTION, "", True, f'str://"{SNIPPET.replace(" 5", "5")}"')),
    uploads("load R c --xml", TEXT, *upload(1, "c", TEXT)),
    uploads("load R c --xml", TEXT[:4088], *upload(1, "c", TEXT[:4088])),  # one piece, which it fills
    uploads("create R session d --xml", "<session/>", *upload(10, "d", "<session/>")),
    uploads("dupdate R d --xml", "<x/>", ((8, NAME, "d"), "off"), *upload(4, "d", "<x/>"), ((7, NAME, "d"), "on again")),
    (["tree", "R"], [(GET, STOPPED)], 0, r"domain_route D \[disabled\]", {"path": "D", "state": "disabled"}),
    (["tree", "R"], [(GET, "none")], 1, r"\A\Z", {"status": "error"}),
    (["diff", "R", "RUNNING"], [(GET, STOPPED)], 1, "changed D/enabled: false -> true", {"path": "D/enabled", "from": "false", "to": "true"}),
    (["diff", "R", "RUNNING"], [(GET, RUNNING)], 0, "runs what", {}),
    (["apply", "R", "RUNNING", "--yes"], [(GET, STOPPED), ENABLE, (GET, RUNNING)], 0, "1. enable D\n", {"outcome": "applied"}),
    (["apply", "R", "RUNNING", "--yes"], [(GET, STOPPED), ENABLE, (GET, STOPPED)], 1, "1. enable D\n", {"outcome": "differs"}),
    (["restore", "R", "RUNNING", "--yes"], [(GET, STOPPED), ENABLE, (GET, RUNNING)], 0, "1. enable D\n", {"outcome": "applied"}),
    (["restore", "R", "ODD", "--yes"], [(GET, STOPPED_ODD), ENABLE, (GET, ODD)], 0, "1. enable D\n", {"outcome": "applied"}),
    (["shell"], [ENABLE], 0, "enabled D", {"entity": "D", "message": "enabled D"}),
)


class Interop(ControlTest):
    domain = 69
    greeted = 0  # the kind of response to a greeting

    def answer(self, control, router, name, requests):
        """Answers what zulctl asks until it ends, which has to be exactly the requests; returns status and both outputs."""
        requests = list(requests)
        while True:
            control.read(0.01)
            router.read(0.01)
            if "\n" in router.output:
                payload = router.request()[1]
                identity = wire.identity_of(payload)
                if payload == wire.request(identity, name, GREETING, DUMMY, 0):  # again until it is answered
                    router.write(wire.response(identity, self.greeted, "it is me", True, "<"))
                    continue
                request, answer = requests.pop(0)
                self.assertEqual(payload, wire.request(identity, name, *request))
                if answer:
                    router.write(wire.response(identity, 0, answer[:4], False, ">"), wire.response(identity, 0, answer[4:], True, "<"))
            elif control.process.poll() is not None:
                break
        self.assertEqual(requests, [], control.log)
        return *control.wait(), control.log

    def run_control(self, router, name, requests, *arguments, typed=None):
        """Runs zulctl with these words of Latin-1."""
        with Program("zulctl", "-d", self.domain, *[os.fsdecode(word.encode("latin-1")) for word in arguments]) as control:
            if typed:
                control.send(typed.encode("latin-1"))
                control.close_input()
            return self.answer(control, router, name, requests)

    def check(self, row, router, name, *options):
        """A row of the table in both forms."""
        words, requests, status, shown, last = row
        wanted, odd = self.file("wanted.xml", RUNNING), self.file("odd.xml", ODD)
        words = [{"R": name, "RUNNING": wanted, "ODD": odd}.get(word, word) for word in words]
        for form in ("text", "json"):
            with self.subTest(words=words[:3], form=form):
                form_option = ["--json"] if form == "json" else []
                backup = ["--backup", f"{wanted}.{form}"] if "--yes" in words else []
                typed = f'enable "{name}" D\n' if words == ["shell"] else None
                found, out, log = self.run_control(router, name, requests, "--discovery", "3", *form_option, *options, *words, *backup, typed=typed)
                self.assertEqual((found, "attribute enabled" in log), (status, odd in words), out + log)
                if form == "text":
                    self.assertRegex(out, shown)
                else:
                    last_row = ([{}] + rows_of(out))[-1]
                    self.assertEqual(last_row | last, last_row)

    def test_every_command_in_text_and_json(self):
        with CycloneRouter(self.domain) as router:
            for row in TABLE:
                self.check(row, router, ROUTER)
        with CycloneRouter(self.domain, "Federation") as router:
            self.check(command("get R", GET), router, ROUTER, "--federation")

    def test_who_is_there_and_why_not(self):
        for self.greeted, product, options, timeout, status, shown, cause, fact in (
                (0, "Routing", [], "10", 0, " yes .*: r2", "answers", "it answered after"),
                (2, "Routing", [], "10", 0, " yes .*: r2", "answers", "it answered after"),
                (0, "Routing", ["xcdr2"], "0.5", 4, " no .*: r2", "incompatible_qos", "DATA_REPRESENTATION: it does not read XCDR version 1"),
                (0, "Other", [], "0.5", 4, r"PARTICIPANT\n\Z", "unknown", "its request reader is not seen")):
            with CycloneRouter(self.domain, product, "ZUL Routing Service: r2", *options) as router:
                listed = {"router": "r2", "answers": status == 0} if product == "Routing" else {}
                self.check((["list"], [], 0, shown, listed), router, "r2", "-t", timeout)
                self.check((["why", "R"], [], status, f"{cause}: (.|\n)*{fact}", {"cause": cause}), router, "r2", "-t", timeout)

    def test_a_router_that_came_a_moment_ago_is_not_asked(self):
        with Program("zulctl", "-d", self.domain, "shell") as control:
            control.send("get nobody\n")  # which takes as long as routers are looked for
            control.until(lambda: "not sent" in control.log, "the end of the first command")
            with CycloneRouter(self.domain, "Routing", "ZUL Routing Service: r2") as router:
                control.send("get r2\n")
                control.close_input()
                self.assertIn("part 1", self.answer(control, router, "r2", [(GET, "part 1")])[1])

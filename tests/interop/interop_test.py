"""Every command of the shell, as a router on another maker's DDS stack reads it and answers it.

The router decodes by its own code, answers with what it has decoded and prints the same: each command is checked by what the shell
prints and by what the router has logged.
"""

import json
import os
import signal
import tempfile
import unittest
import zlib

from cyclone import CycloneRouter, PeerShell

ROUTER = "r 1"  # with a blank: names travel whole
LOAD, UNLOAD, UPDATE, PAUSE, RESUME, ENABLE, DISABLE, ANNOUNCE, CREATE, DELETE, SAVE, GET, ADD_PEER = (
    1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14)
PIECE_SIZE = 4096
LONGEST_ANSWER_PART = "0123456789abcdef" * 256


def bare(kind):
    return [{"kind": kind, "dummy": 0}]


def entity(kind, name):
    return [{"kind": kind, "name": name}]


def peers(route, first, *names):
    return [{"kind": ADD_PEER, "name": route, "first": first, "peers": list(names)}]


def upload(kind, name, text):
    """The requests that carry a text: full pieces, the last of which tells of the whole."""
    data = text.encode("latin-1")
    sizes = [PIECE_SIZE] * (len(data) // PIECE_SIZE) + [len(data) % PIECE_SIZE]
    if len(sizes) > 1 and sizes[-1] == 0:
        sizes.pop()
    requests = [{"kind": kind, "name": name, "final": False, "piece": size} for size in sizes]
    requests[-1].update(final=True, pieces=len(sizes), length=len(data), adler32=zlib.adler32(data), text=text[:1000])
    return requests


def local_file(size):
    """XML of this many bytes, with quotes, line feeds and bytes outside ASCII."""
    text = '<dds name="caf\xe9 \xff">\n' + "".join(f"<!-- 'line' \"{number}\" & more -->\n" for number in range(size // 20))
    return text[: size - 7] + "\n</dds>"


FILES = {"ten_thousand": local_file(10_000), "two_pieces": local_file(4089), "one_piece": local_file(4088), "empty": ""}


def commands(folder):
    """The rest of a line behind the router's name, and the requests that it must become."""
    inline = "str://\"<domain_route name='d 1'><participant_1/></domain_route>\"\n"  # runs to the end of the line
    table = [
        ("enable %s", entity(ENABLE, "")),
        ("enable %s DomainRoute", entity(ENABLE, "DomainRoute")),
        ("disable %s DomainRoute::Session", entity(DISABLE, "DomainRoute::Session")),
        ("pause %s " + "n" * 255, entity(PAUSE, "n" * 255)),
        ('resume %s "a b"', entity(RESUME, "a b")),
        ("delete %s d1", entity(DELETE, "d1")),
        ("unload %s", bare(UNLOAD)),
        ("save %s", bare(SAVE)),
        ("get %s", bare(GET)),
        ("add_peer %s d1 p1 udpv4://127.0.0.1,,b", peers("d1", True, "udpv4://127.0.0.1", "b")),
        ("add_peer %s d1 p2 " + ",".join(str(n) * 125 for n in range(10, 26)),
         peers("d1", False, *(str(n) * 125 for n in range(10, 26)))),
        ("load %s cfg " + inline.rstrip(), upload(LOAD, "cfg", inline)),
        ("load %s cfg site.xml", upload(LOAD, "cfg", "file://site.xml")),
        ("update %s d1 file:///etc/site.xml remote", upload(UPDATE, "d1", "file:///etc/site.xml")),
        ("update %s . domain_route.participant_1.domain_id=5", upload(
            UPDATE, "",
            'str://"<domain_route><participant_1><domain_id>5\n</domain_id></participant_1></domain_route>"')),
        ("create %s domain_route " + inline.rstrip(), upload(CREATE, "", inline)),
        ("create %s session d1 s.xml", upload(CREATE, "d1", "file://s.xml")),
    ]
    for name, text in FILES.items():
        path = os.path.join(folder, name)
        with open(path, "w", encoding="latin-1", newline="") as file:
            file.write(text)
        table.append((f"load %s cfg {path} local", upload(LOAD, "cfg", f'str://"{text}"')))
    return table


class InteropTest(unittest.TestCase):
    def expect_requests(self, router, expected, steps):
        """Checks the router's next lines; `steps` are the growths of the invocation."""
        for request, step in zip(expected, steps, strict=True):
            self.identity["invocation"] += step
            seen = router.request()
            self.assertEqual({"target": ROUTER, **request, **self.identity}, seen)
        return seen

    def run_commands(self, shell, router):
        for command, expected in commands(self.folder):
            with self.subTest(command=command[:40]):
                printed = shell.run(command % f'"{ROUTER}"')
                seen = self.expect_requests(router, expected, [1] + [0] * (len(expected) - 1))
                answer = printed.removeprefix("Result: ")
                if seen["kind"] == GET:
                    self.assertEqual(LONGEST_ANSWER_PART, answer[: len(LONGEST_ANSWER_PART)])
                    answer = answer[len(LONGEST_ANSWER_PART):]
                self.assertTrue(printed.startswith("Result: "), printed)
                self.assertEqual(seen, json.loads(answer))

        # Only the last of a dupdate's requests is waited for, and its success is deliberately reported so.
        printed = shell.run(f'dupdate "{ROUTER}" d1 session.s1=<')
        self.assertEqual("Can't open local file session.s1=<\n\nNo response received\n", printed)
        self.expect_requests(
            router,
            entity(DISABLE, "d1") + upload(UPDATE, "d1", 'str://"<session><s1>&lt;\n</s1></session>"') + entity(ENABLE, "d1"),
            [1, 1, 2])

        self.assertEqual("", shell.run("hello"))
        self.expect_requests(router, [{**bare(ANNOUNCE)[0], "target": "*"}], [1])

        self.assertEqual("No response received\n", shell.run("disable other d1"))
        self.expect_requests(router, [{**entity(DISABLE, "d1")[0], "target": "other"}], [1])


    def check_discovery(self, trace, product):
        """The peer has accepted the shell as it announces itself: the participant, both endpoints, and no complaint."""
        prefix = ":".join(format(int(self.identity["writer"][at:at + 8], 16), "x") for at in (0, 8))
        topic = rf"zul/{product.lower()}_service/administration/command_"
        types = rf"ZUL::{product}Service::Administration::Command"
        for pattern in (
                rf"SPDP ST0 {prefix}:\S+ .* NEW ",
                rf"SEDP ST0 {prefix}:\S+ reliable volatile writer .*{topic}request/{types}Request .* NEW ",
                rf"SEDP ST0 {prefix}:\S+ reliable volatile reader .*{topic}response/{types}Response .* NEW "):
            self.assertRegex("".join(trace), pattern)
        self.assertEqual([], [line for line in trace if " dq.builtin: " in line and "invalid" in line])

    def exchange(self, domain, program, product, *options):
        with tempfile.TemporaryDirectory() as self.folder, CycloneRouter(domain, ROUTER, *options) as router:
            with PeerShell(domain, program) as shell:
                first = shell.meet(router, f'"{ROUTER}"')
                self.identity = {key: first[key] for key in ("host", "app", "invocation", "writer")}
                # The request names its sender by the first words of the sender's GUID prefix.
                words = (first[key].to_bytes(4, "big", signed=True).hex() for key in ("host", "app"))
                self.assertEqual(first["writer"], "".join(words))
                self.run_commands(shell, router)
                shell.send("exit\n")
                self.assertEqual((0, "Stopping...\n"), shell.wait())
                self.assertEqual("", shell.log)
            router.signal(signal.SIGTERM)
            self.assertEqual((0, ""), router.wait())
            self.assertEqual("", router.log)
            self.check_discovery(router.trace(), product)

    def test_routing(self):
        self.exchange(50, "zulrssh", "Routing")

    def test_federation(self):
        self.exchange(51, "zulfssh", "Federation", "--federation")

    def test_big_endian_answers(self):
        self.exchange(52, "zulrssh", "Routing", "--big-endian")


if __name__ == "__main__":
    unittest.main()

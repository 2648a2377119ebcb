"""diff, apply and restore against live routers: text, JSON, exit statuses, questions, backups, and what is put back."""

import fcntl
import os
import signal
import subprocess
import tempfile

from control import ControlTest
from processes import BIN, Program

SIDES = '<participant_1><domain_id>0</domain_id></participant_1><participant_2><domain_id>1</domain_id></participant_2>'
PLAN = "1. delete Old\n2. update D: <domain_route><documentation>x</documentation></domain_route>\n3. enable D\n4. create in the router: " \
       f'<domain_route name="New">{SIDES}</domain_route>\n'
COMMANDS = "delete update enable create".split()


def document(*routes, sections="", services=""):
    return f'<dds>{sections}<routing_service name="S">{"".join(routes)}</routing_service>{services}</dds>'


def route(name, parts="", attributes=""):
    return f'<domain_route name="{name}"{attributes}>{SIDES}{parts}</domain_route>'


class Apply(ControlTest):
    domain = 78

    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())
        before = os.getcwd()
        os.chdir(self.folder)
        self.addCleanup(os.chdir, before)
        self.file("before.xml", document(route("D", attributes=' enabled="false"'), route("Old")))
        self.file("wanted.xml", document(route("D", "<documentation>x</documentation>"), route("New")))

    def file(self, name, text):
        return super().file(os.path.join(self.folder, name), text)

    def read(self, name):
        with open(name, encoding="utf-8") as file:
            return file.read()

    def practice(self, *options, name="r1"):
        return self.router(name, "--config", "before.xml", *options)

    def control(self, *arguments, **keywords):
        return self.run_text("--discovery", "1" if arguments[0] in ("apply", "restore") else "10", *arguments, **keywords)

    def control_json(self, *arguments):
        return self.run_json("--discovery", "1", *arguments)

    def requests(self, router):
        """What the router was asked since the last look, without the gets."""
        asked = [line.split(" ", 1)[0].lower() for line in router.output.splitlines()]
        router.output = ""
        return [kind for kind in asked if kind != "get"]

    def assert_runs(self, name):
        self.assertEqual(self.control("diff", "r1", name), (0, f"r1 runs what {name} says\n", ""))

    def test_a_router_that_does_not_come_to_run_the_file_and_back(self):
        router = self.practice()
        status, rows = self.control_json("diff", "r1", "wanted.xml")
        self.assertEqual((status, [(row["change"], row["path"], row["from"], row["to"]) for row in rows]), (1, [
            ("changed", "D/enabled", "false", "true"), ("changed", "D/documentation", "", "x"), ("removed", "Old", "domain_route", ""),
            ("added", "New", "", "domain_route")]))
        self.assertEqual(self.control("diff", "r1", "wanted.xml")[:2],
                         (1, "changed D/enabled: false -> true\nchanged D/documentation: x\nremoved Old: domain_route\nadded New: domain_route\n"))
        self.assertEqual(self.control("apply", "r1", "wanted.xml", "--dry-run"), (0, PLAN + "r1: nothing was sent\n", ""))
        router.expect("(GET[^\n]*\n){3}")
        self.assertEqual((self.requests(router), os.path.exists("r1.backup.xml")), ([], False))
        status, out, log = self.control("apply", "r1", "wanted.xml", "--yes")
        self.assertTrue(out.startswith(PLAN + "what ran is kept in r1.backup.xml\nr1: delete: deleted Old\n"), out)
        self.assertEqual((status, log, out.endswith("r1: create: created New\nr1: runs what wanted.xml says\n")), (0, "", True))
        self.assert_runs("wanted.xml")
        self.assertEqual(self.read("r1.backup.xml").strip(), self.read("before.xml"))
        router.expect("CREATE.*GET[^\n]*\n.*GET[^\n]*\n")
        self.assertEqual(self.control_json("apply", "r1", "wanted.xml", "--yes"), (0, [
            {"router": "r1", "outcome": "unchanged", "message": "runs what wanted.xml says; nothing is to be sent", "backup": ""}]))
        router.expect("GET[^\n]*\n")
        self.assertEqual(self.requests(router), [])
        status, rows = self.control_json("restore", "r1", "r1.backup.xml", "--yes")
        plan = [row for row in rows if "plan" in row]
        self.assertEqual([(row["plan"], row["step"], row["command"], row["entity"]) for row in plan], [
            ("restore", 1, "delete", "New"), ("restore", 2, "disable", "D"), ("restore", 3, "update", "D"), ("restore", 4, "create", "")])
        self.assertEqual((status, rows[-1]["outcome"], rows[-1]["backup"]), (0, "applied", "r1.backup-2.xml"))
        self.assert_runs("before.xml")

    def test_what_no_other_command_takes_away_is_refused_or_loaded(self):
        self.practice()
        self.file("more.xml", self.read("before.xml").replace("<dds>", '<dds><qos_library name="Q"/>'))
        self.assertEqual(self.control("apply", "r1", "more.xml", "--yes")[0], 0)
        status, out, log = self.control("apply", "r1", "before.xml", "--yes")
        self.assertEqual((status, out), (2, ""))
        self.assertIn("r1: no command can bring about what is wanted of /qos_library[Q]", log)
        status, rows = self.control_json("restore", "r1", "before.xml", "--yes")
        self.assertEqual((status, [row["command"] for row in rows if "plan" in row], rows[-1]["outcome"]), (0, ["load"], "applied"))
        self.assert_runs("before.xml")

    def test_refused_before_anything_is_sent(self):
        router = self.practice()
        self.file("other.xml", '<dds><routing_service name="T"/></dds>')
        self.file("bad.xml", "<dds>\n<x/></dds>")
        self.file("kept.xml", "mine")
        long_name = "n" * 254
        self.file("long.xml", document(route(long_name, f'<session name="{long_name}"/>')))
        self.file("longer.xml", self.read("long.xml").replace("<session", "<session enabled='false'"))
        for status, reason, *arguments in (
                (2, "no terminal, so nobody can be asked", "apply", "r1", "wanted.xml"),
                (2, "no terminal, so nobody can be asked", "restore", "r1", "wanted.xml"),
                (2, "other.xml holds no configuration named S, which r1 runs; it holds T", "diff", "r1", "other.xml"),
                (2, "r1 has no configuration named T; its document holds S", "diff", "r1", "other.xml", "--configuration", "T"),
                (2, "bad.xml: line 2: x cannot stand here", "apply", "r1", "bad.xml", "--yes"),
                (2, "kept.xml is there and holds something else", "apply", "r1", "wanted.xml", "--yes", "--backup", "kept.xml"),
                (2, "cannot write none/x", "apply", "r1", "wanted.xml", "--yes", "--backup", "none/x"),
                (2, "one router; name it", "diff", "r?", "wanted.xml"),
                (2, "too long", "diff", "n" * 255, "wanted.xml"),
                (4, "no_such_name", "apply", "r2", "wanted.xml", "--yes")):
            with self.subTest(arguments):
                found, _, log = self.control(*arguments, input=b"y\n")
                self.assertEqual((found, reason in log), (status, True), log)
        status, rows = self.control_json("apply", "r1", "wanted.xml", "--yes", "--backup", "kept.xml")
        self.assertEqual((status, rows[-1]["outcome"], rows[-1]["backup"]), (2, "not_sent", ""))
        with open("/dev/full", "w", encoding="utf-8") as full:
            unseen = subprocess.run([os.path.join(BIN, "zulctl"), "-d", str(self.domain), "--discovery", "1", "apply", "r1", "wanted.xml", "--yes"],
                                    stdout=full, stderr=subprocess.PIPE, text=True, check=False, timeout=60)
        self.assertEqual((unseen.returncode, "the plan cannot be shown; nothing was sent" in unseen.stderr), (2, True))
        router.read(0)
        self.assertEqual((self.requests(router), self.read("kept.xml")), ([], "mine"))
        self.assertEqual(self.control("apply", "r1", "long.xml", "--yes")[0], 0)
        self.assertIn("too long: nnn", self.control("apply", "r1", "longer.xml", "--yes")[2])
        self.practice()
        for command in ("apply", "restore"):
            status, out, log = self.run_text("--discovery", "1.5", command, "r1", "wanted.xml", "--yes")
            self.assertEqual((status, out), (4, ""))
            self.assertRegex(log, r"several routers are called r1: [0-9a-f.]{26}, [0-9a-f.]{26};")

    def test_of_several_configurations_the_one_that_runs_is_to_be_named(self):
        self.file("before.xml", document(route("D"), services='<routing_service name="T"/>'))
        self.practice()
        self.assertIn("holds the configurations S, T and does not say which one runs", self.control("diff", "r1", "wanted.xml")[2])
        self.assertEqual(self.control("apply", "r1", "wanted.xml", "--yes", "--configuration", "S")[0], 0)
        # T does not run: nothing of it is found, and what runs stays.
        self.file("other.xml", f'<dds><routing_service name="T">{route("E")}</routing_service></dds>')
        self.assertEqual(self.control("apply", "r1", "other.xml", "--yes", "--configuration", "T")[0], 3)
        self.assertEqual(self.control("diff", "r1", "wanted.xml", "--configuration", "S")[0], 0)

    def test_the_answer_to_the_question_counts(self):
        router = self.practice()
        for answer, status in (("n\n", 5), ("\n", 5), ("\x03", 5), ("\x04", 5), ("yes\n", 0)):
            with Program("zulctl", "-d", self.domain, "--discovery", "1", "apply", "r1", "wanted.xml", terminal=True) as asking:
                asking.until(lambda: asking.log.endswith("Send 4 commands to r1? [y/N] "), "the question")
                self.assertEqual(self.requests(router), [])
                asking.send(answer)
                self.assertEqual(asking.wait()[0], status, answer)
        router.read(0)
        self.assertEqual(self.requests(router), COMMANDS)
        # What runs changes while the operator thinks.
        with Program("zulctl", "-d", self.domain, "--discovery", "1", "apply", "r1", "before.xml", terminal=True) as asking:
            asking.until(lambda: "[y/N]" in asking.log, "the question")
            self.assertEqual(self.control("delete", "r1", "New")[0], 0)
            asking.send("y\n")
            self.assertEqual(asking.wait()[0], 1)
            self.assertIn("runs something else by now", asking.log)

    def test_a_refusal_in_the_middle_leaves_what_ran(self):
        self.practice()
        self.assertEqual(self.control("disable", "r1")[0], 0)  # which no document shows, and which refuses any enable
        status, rows = self.control_json("apply", "r1", "wanted.xml", "--yes")
        self.assertEqual((status, rows[-1]["outcome"]), (1, "put_back"))
        self.assertEqual(rows[-1]["message"], "enable of D was refused; what ran before runs again")
        self.assertEqual([row["command"] for row in rows if row.get("plan") == "put_back"], ["update", "create"])
        self.assert_runs("before.xml")

    def test_what_is_too_long_to_be_deleted_is_put_back_by_a_load(self):
        def session(parts):  # may be updated, but not deleted
            return f'<session name="{"n" * 252}">{parts}</session>'
        element = "<element><name>a</name><value>b</value></element>"
        self.file("before.xml", document(route("D", session(""), ' enabled="false"')))
        self.file("wanted.xml", document(route("D", session(f"<property><value>{element}</value></property>"))))
        self.practice()
        self.assertEqual(self.control("disable", "r1")[0], 0)
        status, rows = self.control_json("apply", "r1", "wanted.xml", "--yes")
        self.assertEqual((status, rows[-1]["outcome"]), (1, "put_back"), rows)
        self.assertEqual([row["command"] for row in rows if row.get("plan") == "put_back"], ["load"])
        self.assert_runs("before.xml")

    def test_an_interrupt_in_the_middle_leaves_what_ran(self):
        router = self.practice("--delay-ms", "300")
        back, failed = "what ran before runs again", "putting back failed: .* restore r1 r1.backup(-[0-9])?.xml"
        for answer, what, second, outcome in (("delete: deleted Old", "update of D was interrupted", None, back),
                                              ("create: created New", "reading back failed", None, back),
                                              ("delete: deleted Old", "update of D was interrupted", "", failed),
                                              ("enable: enabled D", "create of the router was interrupted", r"1\. [^\n]*\n", failed)):
            with Program("zulctl", "-d", self.domain, "--discovery", "1", "apply", "r1", "wanted.xml", "--yes") as applying:
                applying.expect(f"r1: {answer}\n")
                applying.signal(signal.SIGINT)
                applying.expect(f"{what}[^\n]*; putting back what ran\n")
                if second is not None:
                    applying.expect(second)
                    applying.signal(signal.SIGINT)
                applying.expect(f"r1: {what}[^\n]*; [^\n]*{outcome}\n")
                self.assertEqual(applying.wait()[0], 5)
            if second is not None:
                router.read(0)
                self.assertEqual(self.control("restore", "r1", "r1.backup.xml", "--yes")[0], 0)
            self.assert_runs("before.xml")

    def test_an_interrupt_while_nobody_reads_does_not_silence_the_rest(self):
        routes = [route(f"{'n' * 60}{i}") for i in range(30)]
        self.file("before.xml", document(*routes))
        self.file("wanted.xml", document())
        router = self.practice()
        read_end, write_end = os.pipe()
        self.addCleanup(os.close, read_end)
        fcntl.fcntl(write_end, fcntl.F_SETPIPE_SZ, 4096)  # holds the plan, and not all of the answers
        with Program("zulctl", "-d", self.domain, "--discovery", "1", "apply", "r1", "wanted.xml", "--yes", stdout=write_end) as applying:
            os.close(write_end)
            applying.interrupt_write(signal.SIGINT)
            router.expect("CREATE.*GET[^\n]*\n")  # the way back, which nobody has to read of
            with open(read_end, encoding="ascii", closefd=False) as output:
                out = output.read()
            self.assertEqual(applying.wait()[0], 5)
        self.assertRegex(out, "\nr1: delete of n+[0-9]+ was interrupted; what ran before runs again\n$")
        self.assert_runs("before.xml")

    def test_a_router_that_dies_in_the_middle_is_told_of(self):
        router = self.practice("--delay-ms", "300")
        with Program("zulctl", "-d", self.domain, "-t", "1.5", "--json", "--discovery", "1", "apply", "r1", "wanted.xml", "--yes",
                     "--configuration", "S", "--backup", "-b.xml") as applying:
            applying.expect('"deleted Old"')
            router.signal(signal.SIGKILL)
            applying.expect('"outcome":"not_put_back","message":"update of D was not answered; putting back failed: [^"]*'
                            f'zulctl -d {self.domain} restore --configuration S -- r1 -b.xml","backup":"-b.xml"')
            self.assertEqual(applying.wait()[0], 4)
        self.assertEqual(self.read("-b.xml").strip(), self.read("before.xml"))

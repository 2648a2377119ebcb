"""Every command of zulctl against live routers, in text and JSON, with its exit status."""

import json
import os
import pathlib
import re
import signal
import subprocess
import tempfile

from control import SCHEMA, SOURCE, ControlTest, faults
from processes import BIN, Program

SESSION = '<session name="s"/>'
DOCUMENT = '<dds><routing_service name="other"/></dds>'


def handles_interrupt(pid, threads):
    """Whether the process catches SIGINT and has so many threads."""
    with open(f"/proc/{pid}/status", encoding="ascii", errors="replace") as file:
        state = dict(line.rstrip().partition(":\t")[::2] for line in file)
    return int(state["SigCgt"], 16) >> (signal.SIGINT - 1) & 1 and int(state["Threads"]) >= threads


class Commands(ControlTest):
    domain = 66

    def test_the_schema_check_finds_faults(self):
        row = {"router": "r", "cause": "silent", "text": "", "evidence": []}
        self.assertEqual(faults(row, SCHEMA), [])
        for bad in ({"cause": "tired"}, {"evidence": [1]}, {"more": 1}, {"text": None}):
            self.assertNotEqual(faults(row | bad, SCHEMA), [], bad)

    def test_manual_and_completion_know_every_command_and_option(self):
        manual = (SOURCE / "packaging/man/zulctl.1").read_text("utf-8").replace("\\-", "-")
        completed = (SOURCE / "packaging/bash-completion/zul-shells").read_text("utf-8")
        commands = re.findall(r"^  ([a-z-]+)  +\w", self.run_text("--help")[1].split("Subcommands:")[1], re.MULTILINE)
        self.assertIn("dupdate", commands)
        for command in commands:
            self.assertTrue(f'.BI "{command} ' in manual and re.search(f'[ "]{command} ', completed), command)
            for option in re.findall(r"--[a-z-]+", self.run_text(command, "--help")[1]):
                self.assertTrue(option in manual and option in completed, option)

    def test_every_command_does_what_it_says_and_exits_as_it_went(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        self.router("r1", "--save-dir", folder)
        local = self.file("local.xml", DOCUMENT)
        route = "DefaultDomainRoute"
        for status, expected, *arguments in (
                (0, "disabled " + route, "disable", "r1", route),
                (1, "error: .*disabled already", "disable", "r1", route),
                (0, "enabled " + route, "enable", "r1", route),
                (1, "error: the router is enabled already", "enable", "r1"),
                (0, "paused " + route, "pause", "r1", route),
                (0, "resumed " + route, "resume", "r1", route),
                (3, "no such entity: no entity named no", "pause", "r1", "no"),
                (0, "saved the configuration", "save", "r1"),
                (0, f"created {route}::s", "create", "r1", "session", route, "--xml", SESSION),
                (0, f"updated {route}", "update", "r1", route, "--set", "domain_route.participant_2.domain_id=5"),
                (0, f"deleted {route}::s", "delete", "r1", f"{route}::s"),
                (0, f"peers of {route} participant_2: a, b,c", "add-peer", "r1", route, "p2", "a", "b,c"),
                (0, "r1: disable: .*\nr1: update: updated .*\nr1: enable: enabled", "dupdate", "r1", route, "--xml",
                 "<domain_route><participant_1><domain_id>3</domain_id></participant_1></domain_route>"),
                (1, "r1: disable: .*\nr1: update: error: .*\nr1: enable: enabled", "dupdate", "r1", route, "--xml", "<"),
                (3, r"\Ar1: disable: no such entity: [^\n]*\n\Z", "dupdate", "r1", "no", "--xml", SESSION),
                (0, "loaded other", "load", "r1", "other", "--file", local),
                (0, "loaded other", "load", "r1", "other", "--remote-file", local),
                (0, 'routing_service name="other"', "get", "r1"),
                (0, "unloaded other", "unload", "--all"),
                (1, "no configuration is loaded", "save", "r1,r1")):
            with self.subTest(arguments):
                found, out, log = self.run_text("--discovery", "0.7" if "--all" in arguments else "10", *arguments)
                self.assertEqual((found, log), (status, ""), out)
                self.assertRegex(out, expected)

    def test_refused_before_a_domain_is_joined(self):
        # The domain does not exist in any of these, and is never asked for.
        for arguments in ((), ("fly",), ("enable",), ("enable", "r1", "a", "b"), ("delete", "r1"), ("delete", "--all"),
                          ("create", "r1", "route", "--xml", "x"), ("create", "r1", "session", "--xml", "x"),
                          ("create", "r1", "domain_route", "p", "--xml", "x"), ("update", "r1"), ("enable", "n" * 255),
                          ("enable", "a,,b"), ("enable", "r1", "n" * 256), ("update", "r1", "--file", "/none"),
                          ("update", "r1", "--file", "a", "--xml", "b"), ("update", "r1", "--set", "nonsense"),
                          ("load", "r1", "c", "--set", "session.a=b"), ("add-peer", "r1", "d", "p3", "x"),
                          ("add-peer", "r1", "d", "p1"), ("add-peer", "r1", "d", "p1", *"abcdefghijklmnopq"),
                          ("list", "--domains", "5-2"), ("-t", "-1", "list"), ("list", "--domains", "0-233"),
                          ("-t", "nan", "list"), ("--discovery", "NaN", "list"), ("list", "--domains", "0-4294967296")):
            with self.subTest(arguments):
                self.assertEqual(self.run_text(*arguments)[:2], (2, ""))
        self.assertEqual(self.run_text("list", domain=233)[0], 2)
        # Descriptors for the program, not for a participant.
        limit = ["prlimit", "--nofile=12", os.path.join(BIN, "zulctl"), "enable", "r1"]
        done = subprocess.run(limit, capture_output=True, text=True, check=False, timeout=60)
        self.assertEqual((done.returncode, done.stdout), (6, ""))
        self.assertRegex(done.stderr, "cannot create the participant in domain 0")

    def test_words_are_one_word_and_what_they_hold_is_only_shown(self):
        name, entity = "Werk \"Süd\"\x1b[2J\n\xff\x7f\x9b", "a b;=\udcff"
        router = self.router(name)
        status, rows = self.run_json("enable", name, entity)
        self.assertEqual((status, rows[0]["router"], rows[0]["status"]), (3, name, "not_found"))
        self.assertEqual(rows[0]["entity"], "a b;=\ufffd")
        router.expect("ENABLE [^\n]*Süd")
        for word in ("++", "[]", "[a,b]", "\x01++", "\x01"):
            self.assertEqual(self.run_json("enable", name, word)[1][0]["entity"], word)
        for word in ("-y", "--", "--json"):
            self.assertEqual(self.run_json("enable", "--", name, word)[1][0]["entity"], word)
        self.assertRegex(self.run_json("update", name, "--xml=", entity)[1][0]["message"], "no entity")
        with Program("zulctl", "-d", self.domain, "enable", name, entity, terminal=True) as shown:
            self.assertNotIn("\x1b", shown.wait()[1])
        self.assertEqual(self.run_json("--discovery", "0.7", "list")[1][0]["router"], name)
        self.assertNotRegex(self.run_text("--json", "--discovery", "0.7", "list")[1], "[\x00-\x09\x7f-\x9f]")
        self.assertEqual(len(self.run_text("--discovery", "0.7", "list")[1].splitlines()), 2)

    def test_many_routers_at_once_and_the_worst_of_their_statuses(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        kept = pathlib.Path(folder, "r1.xml")
        self.router("r", "--count", "5", "--parts", "30")
        self.router("quiet", "--silent")
        odd = "q/..\x7f\x85"
        self.router(odd, "--save-dir", folder)
        status, rows = self.run_json("--discovery", "2", "get", "r*," + odd)
        self.assertEqual((status, sorted(row["router"] for row in rows)), (0, [odd, "r1", "r2", "r3", "r4", "r5"]))
        self.assertEqual({(row["parts"], row["message"].count("</dds>")) for row in rows if row["router"] != odd}, {(30, 1)})
        self.assertEqual(len({row["guid"] for row in rows}), 6)
        self.assertEqual(self.run_text("get", "r1," + odd, "-o", folder + "/{router}.xml")[0], 0)
        self.assertEqual(sorted(os.listdir(folder)), ["q%2f..%7f%c2%85.xml", "r1.xml"])
        self.assertEqual(self.run_text("get", "r1,r2", "-o", folder + "/x")[:2], (2, ""))
        self.assertEqual(self.run_text("get", "r1", "-o", folder + "/none/x")[0], 2)
        # No room: what was there stays.
        full = f"trap '' XFSZ; ulimit -f 0; {BIN}/zulctl -d {self.domain} get 'q/*' -o {kept}"
        self.assertEqual(subprocess.run(["bash", "-c", full], stderr=subprocess.DEVNULL, check=False, timeout=60).returncode, 2)
        self.assertIn("</dds>", kept.read_text("utf-8"))
        self.assertEqual(sorted(os.listdir(folder)), ["q%2f..%7f%c2%85.xml", "r1.xml"])
        for expected, routers in ((4, "r1,quiet"), (1, "r1,r2"), (4, "r1,nobody")):
            self.assertEqual(self.run_json("-t", "1.5", "--discovery", "1", "enable", routers)[0], expected, routers)
        self.assertEqual(self.run_json("enable", "r1", "no")[0], 3)
        self.assertEqual(self.run_json("--discovery", "0.5", "enable", "none*"), (4, []))

    def test_an_answer_that_comes_while_another_is_written_counts(self):
        inside = "".join(f"<participant_{i}><domain_id>{i}</domain_id></participant_{i}>" for i in (1, 2))
        inside += "".join(f'<session name="s{i}"/>' for i in range(8000))  # more than a pipe holds
        document = f'<dds><routing_service name="top"><domain_route name="d">{inside}</domain_route></routing_service></dds>'
        self.router("big", "--config", self.file("big.xml", document), "--delay-ms", "200")
        slow = self.router("slow", "--delay-ms", "500")
        self.router("quiet", "--silent")
        with subprocess.Popen([os.path.join(BIN, "zulctl"), "-d", str(self.domain), "-t", "2", "get", "big,slow"], stdout=subprocess.PIPE) as control:
            slow.expect("GET [^\n]*: OK")
            self.run_text("-t", "2", "enable", "quiet")  # takes as long
            control.communicate()
        self.assertEqual(control.returncode, 0)

    def test_two_routers_of_one_name_are_two(self):
        self.router("twin")
        self.router("twin")
        status, rows = self.run_json("--discovery", "1.5", "list")
        self.assertEqual((status, [(row["router"], row["answers"], row["duplicate"]) for row in rows]),
                         (0, [("twin", True, True)] * 2))
        status, rows = self.run_json("--discovery", "1.5", "disable", "twi?")
        self.assertEqual((status, [row["status"] for row in rows], len({row["guid"] for row in rows})), (0, ["ok"] * 2, 2))

    def test_the_end_comes_when_it_is_asked_for(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            self.router("r", "--count", "3")
            for words in (["get", "r1"], ["--help"]):
                done = subprocess.run([os.path.join(BIN, "zulctl"), "-d", str(self.domain), *words], stdout=full, check=False,
                                      stderr=subprocess.PIPE, text=True, timeout=60)
                self.assertEqual((done.returncode, "No space left" in done.stderr), (2, True), words)
        # A reader that has gone, and no standard output at all: no word about it.
        for line in ("| head -c 1 >/dev/null; exit ${PIPESTATUS[0]}", ">&-"):
            done = subprocess.run(["bash", "-c", f"{BIN}/zulctl -d {self.domain} --json get r1,r2,r3 {line}"], check=False,
                                  capture_output=True, text=True, timeout=60)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""), line)
        self.router("quiet", "--silent")
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with Program("zulctl", "-d", self.domain, "--json", "enable", "r1,quiet") as waiting:
                waiting.expect('"r1"')
                waiting.signal(number)
                status, out = waiting.wait()
            self.assertEqual((status, json.loads(out.split("\n", 1)[1])["status"]), (5, "interrupted"))
        # Looking for routers, and at any moment of the start.
        with Program("zulctl", "-d", self.domain, "--discovery", "60", "enable", "none") as looking:
            looking.wait_until_idle()
            looking.signal(signal.SIGINT)
            self.assertEqual(looking.wait()[0], 5)
        for threads in range(1, 8):
            with Program("zulctl", "-d", self.domain, "disable", "quiet") as starting:
                while not handles_interrupt(starting.process.pid, threads):
                    self.assertIsNone(starting.process.poll())
                starting.signal(signal.SIGINT)
                self.assertEqual(starting.wait()[0], 5, threads)

    def test_after_an_interrupted_dupdate_what_was_stopped_runs_again(self):
        router = self.router("slow", "--delay-ms", "700")
        with Program("zulctl", "-d", self.domain, "dupdate", "slow", "DefaultDomainRoute", "--xml", "<domain_route/>") as waiting:
            router.expect("DISABLE [^\n]*: OK")
            waiting.signal(signal.SIGINT)
            self.assertEqual(waiting.wait()[0], 5)
        router.expect("ENABLE [^\n]*: OK")
        silent = self.router("silent", "--silent")  # which obeys all the same
        self.assertEqual(self.run_text("-t", "0.3", "dupdate", "silent", "DefaultDomainRoute", "--xml", "<x/>")[0], 4)
        silent.expect("ENABLE [^\n]*: kept back: OK")

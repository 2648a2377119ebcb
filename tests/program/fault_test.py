"""Routers and networks in trouble: wrong, late, duplicate and undecodable answers, routers that die or come late, and
signals at every moment."""

import os
import re
import signal
import sys
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "support"))
from processes import Router, Shell  # noqa: E402

DOMAIN = 24
DISABLE = "disable r1 DefaultDomainRoute"
ENABLE = "enable r1 DefaultDomainRoute"


def connected(*options):
    shell = Shell(DOMAIN, *options)
    shell.prompt()
    shell.connect()
    return shell


class Faults(unittest.TestCase):
    def test_answers_that_belong_to_no_request(self):
        for fault in (["--wrong-invocation"], ["--duplicate"], ["--garbage", "10000"]):
            with Router(DOMAIN, "r1", *fault), connected("-timeout", "30") as shell:
                for _ in range(3):
                    self.assertRegex(shell.run(DISABLE), r"\AResult: .*isabled.*\n\Z", fault)
                    self.assertRegex(shell.run(ENABLE), r"\AResult: .*nabled.*\n\Z", fault)

    def test_many_parts_under_a_storm_of_signals(self):
        with Router(DOMAIN, "r1", "--parts", "100"), connected("-timeout", "20") as shell:
            whole = shell.run("get r1")
            self.assertIn("</dds>", whole)
            shell.send("get r1\n")
            for _ in range(1000):
                shell.signal(signal.SIGINT)
            # Whatever the storm did to that command, the answers that follow are whole and right.
            shell.send("foo\n")
            shell.expect("Unknown command: foo\n")
            shell.prompt()
            answers = [shell.run("get r1") for _ in range(3)]
            self.assertEqual([answer.lstrip("\n") for answer in answers], [whole] * 3)

    def test_late_answer_is_not_credited_to_the_next_command(self):
        with Router(DOMAIN, "r1", "--delay-ms", "1500") as router, Shell(DOMAIN, "-timeout", "1") as shell:
            shell.prompt()
            end = time.monotonic() + 20
            while "DISABLE" not in router.output and time.monotonic() < end:
                self.assertEqual(shell.run(DISABLE), "No response received\n")
                router._pump(0)
            router.expect("DISABLE")
            self.assertEqual(shell.run("get r1"), "No response received\n")

    def test_router_killed_between_request_and_answer(self):
        with Router(DOMAIN, "r1", "--delay-ms", "5000"), Router(DOMAIN, "other"), Shell(
                DOMAIN, "-timeout", "2") as shell:
            shell.prompt()
            shell.connect("other")
            with Router(DOMAIN, "victim", "--delay-ms", "60000") as victim:
                end = time.monotonic() + 20
                while "ENABLE" not in victim.output and time.monotonic() < end:
                    shell.send("enable victim\n")
                    shell._pump(0.3)
                    victim._pump(0.1)
            shell.send("foo\n")
            shell.expect("Unknown command: foo\n")
            shell.prompt()
            self.assertRegex(shell.run("get other"), r"\AResult: <dds>")

    def test_two_routers_with_one_name_and_one_that_comes_late(self):
        with Router(DOMAIN), Router(DOMAIN), connected("-timeout", "10") as shell:
            for _ in range(5):
                answer = shell.run("get r1")
                self.assertEqual(len(re.findall("Result: ", answer)), 1)
                self.assertEqual(answer.count("</dds>"), 1)
            with Router(DOMAIN, "late"):
                shell.connect("late")
                self.assertRegex(shell.run("get late"), r"\AResult: <dds>")


if __name__ == "__main__":
    unittest.main()

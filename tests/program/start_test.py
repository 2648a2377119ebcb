"""Start-up: help, options, and what is printed and returned when the shell cannot start."""

import os
import pathlib
import pty
import resource
import subprocess
import tempfile
import unittest
from functools import partial

from processes import BIN, CLOCK_NANOSLEEP, Program, SessionTest, Shell

NOBODY = 65534
IS_READABLE_BY_ALL = all(folder.stat().st_mode & 0o1 for folder in pathlib.Path(BIN).resolve().parents)

HELP = """ZUL {0} Service Shell 5.1a
Usage: {1} [options]...

Options:
 -domainId  <integer>   Domain id for the remote configuration
 -timeout   <seconds>   Max time to wait a remote response
 -cmdFile   <file>      Run commands in this file
 -help                  Displays this information
"""


def run(program, *arguments, **how):
    with Program(program, *arguments, **how) as shell:
        return *shell.wait(), shell.log


class Start(SessionTest):
    domain = 21

    def test_help_comes_before_everything_else(self):
        for arguments in (["-help"], ["-H"], ["-cmdFile", "-help"], ["nonsense", "-h"]):
            self.assertEqual(run("zulrssh", *arguments), (255, HELP.format("Routing", "zulrssh"), ""), arguments)
        self.assertEqual(run("zulfssh", "-h"), (255, HELP.format("Federation", "zulfssh"), ""))

    def test_bad_options_are_named(self):
        for line, named in (("-x 1", "x"), ("7", "7"), ("-domainId 7 8", "8"), ("-he", "he"), ("-domainIdX 1", "domainIdX"),
                            ("-domainId", "domainId"), ("-domainId abc", "domainId"), ("-t -", "timeout")):
            status, output, log = run("zulrssh", *line.split())
            self.assertEqual((status, output), (255, ""), line)
            self.assertIn(f"bad command-line parameter '{named}'\n", log, line)
            self.assertIn("ERROR [main] failure: get command-line parameters\n", log)

    def test_a_terminal_shows_control_characters_in_log_lines(self):
        terminal, slave = pty.openpty()
        subprocess.run([os.path.join(BIN, "zulrssh"), "-\x1b[7m"], stderr=slave, check=False)
        self.assertIn(b"parameter '\\x1b[7m'", os.read(terminal, 4096))
        os.close(slave)
        os.close(terminal)

    def test_what_cannot_be_opened_or_joined(self):
        missing = os.path.join(tempfile.gettempdir(), "no-such-command-file")
        status, output, log = run("zulrssh", "-cmdFile", missing)
        self.assertEqual((status, output), (255, ""))
        self.assertIn(f"Could not open file {missing}\n", log)
        for domain in ("233", "-1", "99999999999999999999"):
            status, output, log = run("zulrssh", "-domainId", domain)
            self.assertEqual(status, 255)
            self.assertIn("is outside 0..232", log)
            self.assertIn("[ROUTERShell_finalize] failure: initialize remote configuration client\n", log)
            self.assertTrue(log.endswith("ERROR [main] failure: initialize shell\n"), log)

    def test_defaults_abbreviations_and_repetition(self):
        # The last value of a repeated option counts; what follows a number's digits does not.
        for line, banner in (("-d 21 -t 7", "Domain id 21, timeout 7\n"),
                             ("- 21 -DOM 29x -timeout 5 -timeout -9", "Domain id 29, timeout -9\n"),
                             ("-d 21", "Domain id 21, timeout 15\n")):
            shell = self.enterContext(Program("zulrssh", *line.split()))
            self.assertEqual(shell.expect(Shell.PROMPT)[0], banner)
            shell.send("exit\n")
            self.assertEqual(shell.wait(), (0, "Stopping...\n"))

    def test_a_closed_standard_descriptor_does_not_become_a_socket(self):
        for number in range(3):
            shell = self.enterContext(Shell(self.domain, preexec=lambda: os.close(number)))
            if number > 0:
                shell.send("sleep 1000\n")
            shell.wait_until_in(CLOCK_NANOSLEEP)  # also between the reads of an input that has ended
            self.assertEqual(os.readlink(f"/proc/{shell.process.pid}/fd/{number}"), os.devnull)
        router = self.router(preexec=lambda: os.close(0))
        self.assertEqual(os.readlink(f"/proc/{router.process.pid}/fd/0"), os.devnull)

    def test_a_router_that_is_found_at_its_next_announcement_only(self):
        # An answer that is lost comes again after three seconds: that happened to every tenth start. A busy machine may
        # delay one.
        self.router()
        found = [run("zulctl", "-d", self.domain, "--discovery", 2, "get", "r1")[0] == 0 for _ in range(60)]
        self.assertLess(found.count(False), 2)

    def test_a_missing_dev_that_is_taken_for_too_few_descriptors(self):
        without_dev = "/usr/bin/unshare", "--mount", "sh", "-c", 'mount -t tmpfs none /dev && exec "$@"', "sh"
        if subprocess.run([*without_dev, "true"], stderr=subprocess.DEVNULL).returncode:
            self.skipTest("needs the right to mount")
        with Program(*without_dev, os.path.join(BIN, "zulrssh"), "-domainId", 21) as shell:
            shell.expect("Service> ")

    @unittest.skipIf(os.environ.get("ZUL_SANITIZE"), "a sanitizer needs descriptors and threads of its own")
    def test_too_few_descriptors_or_threads_end_in_a_message(self):
        def as_nobody_with(threads):
            os.setuid(NOBODY)  # root may start as many as it likes
            resource.setrlimit(resource.RLIMIT_NPROC, (threads, threads))

        limits = [("file descriptors", partial(resource.setrlimit, resource.RLIMIT_NOFILE, (count, count)))
                  for count in range(4, 15)]
        if os.getuid() == 0 and IS_READABLE_BY_ALL:
            limits += [("threads", partial(as_nobody_with, count)) for count in range(1, 9)]
        for what, limit in limits:
            status, output, log = run("zulrssh", preexec=limit)
            self.assertEqual((status, output), (255, "Domain id 0, timeout 15\n"), (what, log))
            self.assertRegex(log, rf"a participant needs \d+ (more|free) {what}: raise the limit")
            self.assertIn("[ROUTERRemoteConfigClient_createConnection] failed to create participant\n", log)
        if what == "threads":  # a library's log that has lines, and no thread to print them
            missing = {"FASTRTPS_DEFAULT_PROFILES_FILE": "/none"}
            self.assertEqual(run("zulrssh", preexec=partial(as_nobody_with, 1), env=missing)[0], 255)

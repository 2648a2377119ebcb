"""A session at the prompt: on a terminal, through a pipe, and from a command file."""

import os
import signal
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "support"))
from processes import SIGNALS, Program, Router, Shell  # noqa: E402

DOMAIN = 22
ENABLE_SYNTAX = "Command syntax: enable <target_router> [<entity_name>]\n"
GET_SYNTAX = "Command syntax: get <target_router>\n"


class Terminal(unittest.TestCase):
    def test_commands_control_d_and_exit(self):
        with Router(DOMAIN) as router, Shell(DOMAIN, "-timeout", "3", terminal=True) as shell:
            self.assertIn(f"Domain id {DOMAIN}, timeout 3\n", shell.prompt())
            shell.connect(router)
            self.assertRegex(shell.run("DISABLE r1 DefaultDomainRoute"), r"\AResult: .+\n\Z")
            router.expect(r"DISABLE[^\n]*DefaultDomainRoute")
            self.assertRegex(shell.run("get r1"), r"(?s)\AResult: <dds>.*</dds>\n\n\Z")
            self.assertEqual(shell.run(""), "")
            self.assertRegex(shell.run("enable r1 nobody"), r"\AError: .*nobody.*\n\Z")
            # End of input, twice: the last command's first word runs again by itself, and the terminal is read on.
            for _ in range(2):
                shell.send(b"\x04")
                self.assertEqual(shell.prompt(), ENABLE_SYNTAX)
            shell.send("exit\n")
            status, output = shell.wait()
            self.assertEqual((status, output), (0, "exit\nStopping...\n"))

    def test_control_c_at_the_prompt_while_waiting_and_while_sleeping(self):
        with Router(DOMAIN, "r1", "--silent") as router, Shell(
                DOMAIN, "-timeout", "2147483647", terminal=True) as shell:
            shell.prompt()
            while "ANNOUNCE" not in router.output:  # until the router has discovered the shell
                self.assertEqual(shell.run("hello"), "")
                router.read(0.1)
            self.assertEqual(shell.run("get"), GET_SYNTAX)
            self.assertEqual(shell.interrupt_until("ZUL Routing Service> ").replace("^C", ""), "\n" + GET_SYNTAX)
            shell.send("get r1\n")
            router.expect("GET")
            self.assertEqual(shell.interrupt_until("ZUL Routing Service> ").replace("^C", ""),
                             "get r1\n\nResult: (null)\n")
            for command in ("sleep 1000", "sleep"):
                shell.send(command + "\n")
                shell.wait_until_sleeping()
                self.assertEqual(shell.interrupt_until("ZUL Routing Service> ").replace("^C", ""), command + "\n\n")
            shell.send("exit\n")
            shell.expect(r"Stopping\.\.\.\n")
            self.assertEqual(shell.wait()[0], 0)


class Pipe(unittest.TestCase):
    def test_no_signal_ends_the_shell(self):
        with Program("zulrssh", "-domainId", DOMAIN) as shell:
            shell.expect("> ")
            for number in SIGNALS:
                # One that arrives before the read has begun does not interrupt it: repeat until it does.
                shell.signal_until(number, "\n.*> ")
            shell.send("exit\n")
            self.assertEqual(shell.wait()[0], 0)

    def test_an_ignored_signal_stays_ignored(self):
        def ignore():
            signal.signal(signal.SIGINT, signal.SIG_IGN)

        with Program("zulrssh", "-domainId", DOMAIN, preexec=ignore) as shell:
            shell.expect("> ")
            shell.signal(signal.SIGINT)
            shell.send("foo\n")
            self.assertEqual(shell.expect("> ")[0], "Unknown command: foo\nZUL Routing Service")
            shell.send("exit\n")
            self.assertEqual(shell.wait()[0], 0)

    def test_lines_of_every_kind(self):
        long_word = "x" * 4092
        cases = [
            ("\n", ""),
            (" \t \r\n", ""),
            ("foo\r\n", "Unknown command: foo\n"),
            ("foo\x00bar\n", "Unknown command: foo\n"),
            (b"f\xc3\xa9 x\n", "Unknown command: f\n"),
            ('enable "\n', "No response received\n"),
            ("enable\n", ENABLE_SYNTAX),
            ("unload r1 extra\n", "Command syntax: unload <target_router>\n"),
            ("hello\nhistory\nclear\n", ""),
            (long_word + "y\n", f"Unknown command: {long_word}y\n"),
            (long_word + "yz\n", "Line too long\n"),
            ("w " * 2000 + "\n", "Unknown command: w\n"),
            ("enable " + "r" * 255 + "\n", "No response received\n"),  # refused before it is sent
            ("load " + "r" * 255 + " c f\n", "Error: target router name too long\n"),
        ]
        with Shell(23, "-timeout", "0") as shell:
            shell.prompt()
            for line, expected in cases:
                shell.send(line)
                text = line if isinstance(line, str) else line.decode()
                printed = "".join(shell.prompt() for _ in range(text.count("\n")))
                self.assertEqual(printed, expected, text[:40])
            # A line of a megabyte comes in pieces, each too long; the shell survives it.
            shell.send("z" * (1 << 20) + "\nexit\n")
            shell.expect(r"Stopping\.\.\.\n")
            self.assertEqual(shell.wait()[0], 0)

    def test_ended_input_repeats_the_first_word_at_a_pace(self):
        with Shell(23, "-timeout", "0") as shell:
            shell.prompt()
            shell.send("get r1\n")
            shell.process.stdin.close()
            self.assertEqual(shell.prompt(), "No response received\n")
            begin = time.monotonic()
            for _ in range(5):
                self.assertEqual(shell.prompt(), GET_SYNTAX)
            self.assertGreater(time.monotonic() - begin, 4 * 0.25)

    def test_output_that_is_full_or_closed(self):
        for device in ("/dev/full", None):
            read_end, write_end = os.pipe()
            if device:
                os.close(write_end)
                write_end = os.open(device, os.O_WRONLY)
            os.close(read_end)
            with Program("zulrssh", "-domainId", "23", stdout=write_end) as shell:
                os.close(write_end)
                shell.send("foo\nget\nhelp\nexit\n")
                self.assertEqual(shell.process.wait(20), 0, device)


class CommandFile(unittest.TestCase):
    def test_runs_to_its_end_with_echo_and_stops(self):
        with tempfile.NamedTemporaryFile("w", suffix=".cmd") as commands, Router(DOMAIN):
            commands.write('enable\n\nget r1  \n"get" nobody')
            commands.flush()
            with Shell(DOMAIN, "-timeout", "2", "-cmdFile", commands.name) as shell:
                status, output = shell.wait()
            self.assertEqual(status, 0)
            prompt = Shell.PROMPT
            self.assertTrue(
                output.startswith(f"Domain id {DOMAIN}, timeout 2\n{prompt}enable \n{ENABLE_SYNTAX}{prompt}{prompt}"
                                  "get r1 \nResult: <dds>"), output[:400])
            self.assertTrue(
                output.endswith(f"</dds>\n\n{prompt}get nobody \nNo response received\n{prompt}Stopping...\n"),
                output[-300:])


if __name__ == "__main__":
    unittest.main()

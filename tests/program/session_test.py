"""A session at the prompt: on a terminal, through a pipe, and from a command file."""

import os
import re
import signal
import time

from processes import CLOCK_NANOSLEEP, POLL, WRITE, Program, SessionTest, Shell

ENABLE_SYNTAX = "Command syntax: enable <target_router> [<entity_name>]\n"
GET_SYNTAX = "Command syntax: get <target_router>\n"


class Terminal(SessionTest):
    domain = 22

    def test_commands_control_d_and_exit(self):
        router = self.router(terminal=True)
        shell = self.shell("-timeout", "3", router=router, terminal=True)
        self.assertIn("Domain id 22, timeout 3\n", self.banner)
        self.assertRegex(shell.run("DISABLE r1 DefaultDomainRoute"), r"\AResult: .+\n\Z")
        router.expect(r"DISABLE[^\n]*DefaultDomainRoute")
        self.assertRegex(shell.run("get r1"), r"(?s)\AResult: <dds>.*</dds>\n\n\Z")
        self.assertEqual(shell.run(""), "")
        # What a line holds is shown, not obeyed, and so is what a router or a shell sends.
        for line, printed in ('"\u009b7m"', "Unknown command: "), ('load r1 c "\u009b7m" local', "local file "):
            self.assertIn(printed + "\\xc2\\x9b7m\n", shell.run(line))
        self.assertRegex(shell.run('enable r1 "\u009b7m\u00e9"'), r"Error: [^\n]*\\xc2\\x9b7m\u00e9[^\n]*\n\Z")
        router.expect(r"entity \\xc2\\x9b7m\u00e9: ")
        # End of input, twice: the last command's first word runs again by itself, and the terminal is read on.
        begin = time.monotonic()
        for _ in range(8):
            shell.send(b"\x04")
            self.assertEqual(shell.prompt(), ENABLE_SYNTAX)
        self.assertLess(time.monotonic() - begin, 8 * 0.25)
        self.assertEqual(shell.exit(), (0, "exit\nStopping...\n"))

    def test_control_c_at_the_prompt_while_waiting_and_while_sleeping(self):
        router = self.router("r1", "--silent")
        shell = self.shell("-timeout", "2147483647", terminal=True)

        def interrupt(printed):
            # On a busy machine it takes several; each writes a line feed.
            text = shell.repeat_until(lambda: shell.send(b"\x03"), Shell.PROMPT).replace("^C", "")
            self.assertRegex(text, rf"\A{printed}\Z")

        shell.announce(router)
        self.assertEqual(shell.run("get"), GET_SYNTAX)
        interrupt(r"\n+" + re.escape(GET_SYNTAX))
        shell.send("get r1\n")
        router.expect("GET")
        interrupt(r"get r1\n\n+Result: \(null\)\n")
        for command in ("sleep 1000", "sleep"):
            shell.send(command + "\n")
            shell.wait_until_in(CLOCK_NANOSLEEP)
            interrupt(command + r"\n\n+")
        self.assertEqual(shell.exit()[0], 0)


class Input(SessionTest):
    domain = 23

    def test_no_signal_ends_the_shell_and_an_ignored_one_stays_ignored(self):
        shell = self.shell()
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT, signal.SIGABRT, signal.SIGPIPE):
            # One that arrives before the read has begun does not interrupt it: repeat until it does.
            shell.repeat_until(lambda: shell.signal(number), "\n.*> ")
        self.assertEqual(shell.exit()[0], 0)
        shell = self.shell(preexec=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        shell.signal(signal.SIGINT)
        self.assertEqual(shell.run("foo"), "Unknown command: foo\n")

    def test_lines_of_every_kind(self):
        long_word = "x" * 4092
        shell = self.shell("-timeout", "0")
        for line, expected in (
            ("", ""),
            (" \t \r", ""),
            ("foo\x00bar", "Unknown command: foo\n"),
            (long_word + "y", f"Unknown command: {long_word}y\n"),
            (long_word + "yz", "Line too long\n"),
        ):
            self.assertEqual(shell.run(line), expected, line[:40])
        # A line of a megabyte comes in pieces, each too long; the shell survives it.
        shell.send("z" * (1 << 20) + "\n")
        self.assertEqual(shell.exit()[0], 0)

    def test_reads_that_fail_at_once_are_paced(self):
        def at_a_pace(shell, repeated):
            begin = time.monotonic()
            for _ in range(5):
                self.assertEqual(shell.prompt(), repeated)
            self.assertGreater(time.monotonic() - begin, 4 * 0.25)

        shell = self.shell("-timeout", "0")
        shell.send("get r1\n")
        shell.close_input()
        self.assertEqual(shell.prompt(), "No response received\n")
        at_a_pace(shell, GET_SYNTAX)
        # A terminal that cannot be read.
        at_a_pace(self.shell(terminal=True, preexec=lambda: os.dup2(os.open("/dev/tty", os.O_WRONLY), 0)), "")

    def test_input_that_is_not_there_yet_is_waited_for(self):
        for terminal, unfinished in ((False, b"fo"), (True, b"fo\x04")):
            shell = self.shell(terminal=terminal, preexec=lambda: os.set_blocking(0, False))
            shell.send(unfinished)
            shell.wait_until_in(POLL)
            self.assertTrue(shell.run("o").endswith("Unknown command: foo\n"))
            # A signal interrupts the wait as it does a read.
            self.assertIn("\nUnknown command: foo\n", shell.repeat_until(lambda: shell.signal(signal.SIGINT), Shell.PROMPT))

    def test_output_that_is_full_or_closed(self):
        read_end, closed = os.pipe()
        os.close(read_end)
        for output in (closed, os.open("/dev/full", os.O_WRONLY)):
            shell = self.enterContext(Program("zulrssh", "-domainId", self.domain, stdout=output))
            os.close(output)
            shell.send("foo\nget\nhelp\nexit\n")
            self.assertEqual(shell.wait()[0], 0)

    def test_a_signal_while_there_is_no_room_for_output(self):
        shell = self.shell()
        shell.send("sleep 1000\n")
        shell.wait_until_in(CLOCK_NANOSLEEP)
        shell.open_ends.remove(shell.read_end)
        output = os.open(f"/proc/{shell.process.pid}/fd/1", os.O_WRONLY | os.O_NONBLOCK)
        with open(output, "wb", 0) as pipe:
            while pipe.write(b" " * 4096):
                pass
        shell.signal(signal.SIGINT)
        shell.wait_until_in(WRITE)
        shell.signal(signal.SIGINT)  # takes effect when the prompt is printed
        shell.open_ends.add(shell.read_end)
        self.assertEqual(shell.expect(f"{Shell.PROMPT}\n")[0].strip(" "), "")


class CommandFile(SessionTest):
    domain = 22

    def test_runs_to_its_end_with_echo_and_stops(self):
        self.router()
        commands = self.file("commands", 'enable\n\nget r1  \nenable r1 "\u009b7m"\n"get" nobody')
        status, output = self.enterContext(Shell(self.domain, "-timeout", "2", "-cmdFile", commands)).wait()
        self.assertEqual(status, 0)
        prompt = Shell.PROMPT
        self.assertTrue(
            output.startswith(f"Domain id 22, timeout 2\n{prompt}enable \n{ENABLE_SYNTAX}{prompt}{prompt}"
                              "get r1 \nResult: <dds>"), output[:400])
        # Not on a terminal, a router's bytes are printed as they are.
        self.assertRegex(output, r"</dds>\n\n[^\n]*> enable r1 \u009b7m \nError: [^\n]*\u009b7m[^\n]*\n")
        self.assertTrue(output.endswith(f"{prompt}get nobody \nNo response received\n{prompt}Stopping...\n"),
                        output[-300:])

    def test_a_signal_that_interrupts_its_read_ends_it(self):
        shell = self.shell("-cmdFile", "/dev/stdin")
        self.assertEqual(shell.run("foo"), "foo \nUnknown command: foo\n")
        shell.send("get")
        self.assertEqual(shell.repeat_until(lambda: shell.signal(signal.SIGTERM), r"Stopping\.\.\.\n").strip("\n"), "")
        self.assertEqual(shell.wait()[0], 0)

"""Runs the programs under test through pipes and terminals, and waits for what they print.

Every wait is on a condition with a deadline; every process is ended by its id when its context ends.
"""

import fcntl
import os
import pty
import re
import select
import signal
import subprocess
import termios
import time
import unittest

BIN = os.environ.get("ZUL_BIN", "build/bin")
DEADLINE_SECONDS = 30
# System calls.
CLOCK_NANOSLEEP, POLL = {"aarch64": ("115", "73")}.get(os.uname().machine, ("230", "7"))


class Program:
    """A running program. `expect` consumes its output up to a match. `preexec` runs in the new process."""

    def __init__(self, *arguments, terminal=False, env=None, stdout=None, preexec=lambda: None):
        environment = dict(os.environ, **(env or {}))
        arguments = [os.path.join(BIN, arguments[0]), *map(str, arguments[1:])]
        self.output = ""  # not yet consumed
        self.log = ""  # standard error, all of it
        self.terminal = terminal
        error_read, error_write = os.pipe()
        if terminal:
            self.read_end, slave = pty.openpty()
            self.write_end = self.read_end
            self.process = subprocess.Popen(
                arguments, stdin=slave, stdout=slave, stderr=error_write, env=environment,
                start_new_session=True, preexec_fn=lambda: (fcntl.ioctl(0, termios.TIOCSCTTY, 0), preexec()))
            os.close(slave)
        else:
            self.process = subprocess.Popen(
                arguments, stdin=subprocess.PIPE, stdout=stdout or subprocess.PIPE, stderr=error_write,
                env=environment, preexec_fn=preexec)
            self.write_end = self.process.stdin.fileno()
            self.read_end = self.process.stdout.fileno() if stdout is None else None
        os.close(error_write)
        self.error_end = error_read

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        for stream in (self.process.stdin, self.process.stdout):
            if stream is not None:
                try:
                    stream.close()
                except OSError:
                    pass
        if self.terminal:
            os.close(self.read_end)
        os.close(self.error_end)

    def send(self, text):
        data = text if isinstance(text, bytes) else text.encode()
        while data:
            written = os.write(self.write_end, data[:1024])
            data = data[written:]

    def signal(self, number):
        os.kill(self.process.pid, number)

    def signal_until(self, number, pattern):
        """Sends the signal again and again until the pattern is printed; returns the text before it."""
        return self._repeat_until(lambda: self.signal(number), pattern)

    def interrupt_until(self, pattern):
        """Types Ctrl-C until the pattern is printed; returns the text before it."""
        return self._repeat_until(lambda: self.send(b"\x03"), pattern)

    def _repeat_until(self, action, pattern):
        end = time.monotonic() + DEADLINE_SECONDS
        while time.monotonic() < end:
            action()
            try:
                return self.expect(pattern, 0.5)[0]
            except AssertionError:
                pass
        return self.expect(pattern, 0)[0]

    def read(self, timeout):
        """Reads what is there; False when all output has ended."""
        ends = [end for end in (self.read_end, self.error_end) if end is not None]
        ready, _, _ = select.select(ends, [], [], timeout)
        alive = True
        for end in ready:
            try:
                data = os.read(end, 65536).decode("utf-8", "replace")
            except OSError:  # the terminal is gone
                data = ""
            if end == self.error_end:
                self.log += data
            elif not data:
                alive = False
            else:
                self.output += data.replace("\r\n", "\n")
        return alive

    def wait_until_in(self, system_call):
        """Waits until the program's main thread is in that system call."""
        end = time.monotonic() + DEADLINE_SECONDS
        while time.monotonic() < end:
            with open(f"/proc/{self.process.pid}/syscall", encoding="ascii") as state:
                if state.read().split()[0] == system_call:
                    return
        raise AssertionError(f"it was never seen in system call {system_call}")

    def wait_until_idle(self):
        """Waits until the program prints nothing and uses no processor time for half a second."""
        now, end = None, time.monotonic() + DEADLINE_SECONDS
        while time.monotonic() < end:
            with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as state:
                before, now = now, (self.output, state.read().rsplit(")", 1)[1].split()[11:13])
            if now == before:
                return
            self.read(0.5)
        raise AssertionError("it never rested")

    def expect(self, pattern, seconds=DEADLINE_SECONDS):
        """Waits for a match of the regular expression; returns the text before it and the match."""
        end = time.monotonic() + seconds
        while True:
            match = re.search(pattern, self.output, re.DOTALL)
            if match:
                before = self.output[: match.start()]
                self.output = self.output[match.end():]
                return before, match
            if time.monotonic() > end or not self.read(0.1):
                raise AssertionError(
                    f"{pattern!r} was not printed. Output: {self.output[-2000:]!r}\nLog: {self.log[-2000:]!r}")

    def wait(self, seconds=DEADLINE_SECONDS):
        """Waits for the end; returns exit status and the rest of the output."""
        end = time.monotonic() + seconds
        while self.read(0.05) and time.monotonic() < end:
            if self.process.poll() is not None:
                while select.select([e for e in (self.read_end, self.error_end) if e is not None], [], [], 0)[0]:
                    before = (self.output, self.log)
                    if not self.read(0) or before == (self.output, self.log):
                        break
                break
        status = self.process.wait(max(0.1, end - time.monotonic()))
        while select.select([self.error_end], [], [], 0)[0]:
            before = self.log
            self.read(0)
            if self.log == before:
                break
        return status, self.output


class Router(Program):
    """A practice router, ready when constructed."""

    def __init__(self, domain, name="r1", *options, **keywords):
        super().__init__("zul-practice-router", "--domain", domain, "--name", name, *options, **keywords)
        self.name = name
        self.expect(r"ready: [^\n]*\n")


class Shell(Program):
    PROMPT = "ZUL Routing Service> "

    def __init__(self, domain, *options, program="zulrssh", **keywords):
        super().__init__(program, "-domainId", domain, *options, **keywords)
        if program == "zulfssh":
            self.PROMPT = "ZUL Federation Service> "

    def prompt(self):
        """Waits for the next prompt; returns what came before it."""
        return self.expect(re.escape(self.PROMPT))[0]

    def run(self, command):
        """Runs one command at the prompt; returns what it printed."""
        self.send(command + "\n")
        printed = self.prompt()
        if self.terminal and printed.startswith(command + "\n"):
            printed = printed[len(command) + 1:]  # the terminal's echo
        return printed

    def exit(self):
        """Ends the shell by its command; returns exit status and the rest of the output."""
        self.send("exit\n")
        return self.wait()

    def announce(self, router):
        """Says hello until the router hears it."""
        while "ANNOUNCE" not in router.output:
            self.run("hello")
            router.read(0.05)

    def connect(self, router):
        """Waits until router and shell have discovered each other, in both directions."""
        self.announce(router)
        for _ in range(5):
            self.send(f"enable {router.name} NoSuchEntity\n")
            try:
                if "Error: " in self.expect(re.escape(self.PROMPT), 10)[0]:
                    return
            except AssertionError:  # the answer went astray
                self.signal_until(signal.SIGINT, re.escape(self.PROMPT))
                self.run("foo")
        raise AssertionError(f"{router.name} never answered")


class SessionTest(unittest.TestCase):
    """Starts what a test needs, in the domain of its class, and ends it with the test."""

    domain = 0

    def router(self, name="r1", *options):
        return self.enterContext(Router(self.domain, name, *options))

    def shell(self, *options, router=None, **keywords):
        """A shell at its prompt, which the router has discovered."""
        shell = self.enterContext(Shell(self.domain, *options, **keywords))
        self.banner = shell.prompt()
        if router:
            shell.connect(router)
        return shell


SIGNALS = (signal.SIGTERM, signal.SIGHUP, signal.SIGINT, signal.SIGABRT, signal.SIGPIPE)

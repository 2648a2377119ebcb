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
import tempfile
import termios
import time
import unittest

BIN = os.environ.get("ZUL_BIN", "build/bin")
DEADLINE_SECONDS = 30
# System calls.
CLOCK_NANOSLEEP, POLL, WRITE = {"aarch64": ("115", "73", "64")}.get(os.uname().machine, ("230", "7", "1"))


class Program:
    """A running program. `expect` consumes its output up to a match. `preexec` runs in the new process."""

    def __init__(self, *arguments, terminal=False, env=None, stdout=None, preexec=lambda: None):
        self.output = ""  # not yet consumed
        self.log = ""  # standard error, all of it
        self.terminal = terminal
        if terminal:
            self.write_end, stdin = pty.openpty()
            self.read_end, stdout = self.write_end, stdin
            modes = termios.tcgetattr(stdin)
            modes[3] |= termios.NOFLSH  # or Ctrl-C throws away what was printed and is not read yet
            termios.tcsetattr(stdin, termios.TCSANOW, modes)
        else:
            stdin, self.write_end = os.pipe()
            self.read_end, out = (None, stdout) if stdout else os.pipe()
            stdout = os.dup(out) if stdout else out
        self.error_end, stderr = os.pipe()
        self.process = subprocess.Popen(
            [os.path.join(BIN, arguments[0]), *map(str, arguments[1:])], stdin=stdin, stdout=stdout, stderr=stderr,
            env=dict(os.environ, **(env or {})), start_new_session=terminal,
            preexec_fn=lambda: (terminal and fcntl.ioctl(0, termios.TIOCSCTTY, 0), preexec()))
        for end in {stdin, stdout, stderr}:
            os.close(end)
        self.open_ends = {self.read_end, self.error_end} - {None}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        for end in {self.read_end, self.write_end, self.error_end} - {None}:
            os.close(end)

    def send(self, text):
        data = text if isinstance(text, bytes) else text.encode()
        while data:
            data = data[os.write(self.write_end, data[:1024]):]

    def close_input(self):
        os.close(self.write_end)
        self.write_end = None

    def signal(self, number):
        os.kill(self.process.pid, number)

    def read(self, timeout):
        """Reads what is there; False when all output has ended."""
        for end in select.select(self.open_ends, [], [], timeout)[0]:
            try:
                data = os.read(end, 65536).decode("utf-8", "replace")
            except OSError:  # the terminal is gone
                data = ""
            if not data:
                self.open_ends.remove(end)
            elif end == self.error_end:
                self.log += data
            else:
                self.output += data.replace("\r\n", "\n")
        return bool(self.open_ends)

    def until(self, condition, what, seconds=DEADLINE_SECONDS):
        """Reads until the condition holds; returns its value."""
        end = time.monotonic() + seconds
        while not (value := condition()):
            if time.monotonic() > end or not self.read(0.05):
                raise AssertionError(f"{what}. Output: {self.output[-2000:]!r}\nLog: {self.log[-2000:]!r}")
        return value

    def expect(self, pattern, seconds=DEADLINE_SECONDS):
        """Waits for a match of the regular expression; returns the text before it and the match."""
        match = self.until(lambda: re.search(pattern, self.output, re.DOTALL), f"{pattern!r} was not printed", seconds)
        before, self.output = self.output[: match.start()], self.output[match.end():]
        return before, match

    def repeat_until(self, action, pattern):
        """Acts again and again until the pattern is printed; returns the text before it."""
        for _ in range(2 * DEADLINE_SECONDS):
            action()
            try:
                return self.expect(pattern, 0.5)[0]
            except AssertionError:
                pass
        return self.expect(pattern)[0]

    def _state(self, file):
        with open(f"/proc/{self.process.pid}/{file}", encoding="ascii") as state:
            return state.read().rsplit(")", 1)[-1].split()

    def wait_until_in(self, system_call):
        """Waits until the program's main thread is in that system call."""
        self.until(lambda: self._state("syscall")[0] == system_call, f"it was never seen in system call {system_call}")

    def interrupt_write(self, number):
        """Sends the signal while the main thread waits in a write, and returns when it waits again. Reads nothing."""
        def times_waited():
            with open(f"/proc/{self.process.pid}/status", encoding="ascii") as status:
                return re.search("voluntary_ctxt_switches:.*", status.read())[0]
        end = time.monotonic() + DEADLINE_SECONDS
        while self._state("syscall")[0] != WRITE and time.monotonic() < end:
            time.sleep(0.005)
        before = times_waited()
        self.signal(number)
        while times_waited() == before:
            if time.monotonic() > end:
                raise AssertionError("it was never seen waiting in a write")

    def wait_until_idle(self):
        """Waits until the program prints nothing and uses no processor time for half a second."""
        def rests():
            before = self.output, self._state("stat")[11:13]
            self.read(0.5)
            return before == (self.output, self._state("stat")[11:13])
        self.until(rests, "it never rested")

    def wait(self, seconds=DEADLINE_SECONDS):
        """Waits for the end; returns exit status and the rest of the output."""
        end = time.monotonic() + seconds
        while self.process.poll() is None and time.monotonic() < end:
            self.read(0.05)
        status = self.process.wait(0.1)
        while select.select(self.open_ends, [], [], 0)[0]:
            self.read(0)
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
                self.repeat_until(lambda: self.signal(signal.SIGINT), re.escape(self.PROMPT))
                self.run("foo")
        raise AssertionError(f"{router.name} never answered")


class SessionTest(unittest.TestCase):
    """Starts what a test needs, in the domain of its class, and ends it with the test."""

    domain = 0

    def file(self, name, text):
        """Writes a file, in a folder of its own unless the name has one; returns its path."""
        path = os.path.join(self.enterContext(tempfile.TemporaryDirectory()), name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def router(self, name="r1", *options, **keywords):
        return self.enterContext(Router(self.domain, name, *options, **keywords))

    def shell(self, *options, router=None, **keywords):
        """A shell at its prompt, which the router has discovered."""
        shell = self.enterContext(Shell(self.domain, *options, **keywords))
        self.banner = shell.prompt()
        if router:
            shell.connect(router)
        return shell

"""Runs the programs under test through pipes and terminals, and waits for what they print.

Every wait is on a condition with a deadline; every process is ended by its id when its context ends.
"""

import os
import pty
import re
import select
import signal
import subprocess
import time

BIN = os.environ.get("ZUL_BIN", "build/bin")
DEADLINE_SECONDS = 30


class Program:
    """A running program. `expect` consumes its output up to a match."""

    def __init__(self, *arguments, terminal=False, env=None, stdout=None, preexec=None):
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
                start_new_session=True, preexec_fn=preexec)
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

    def _pump(self, timeout):
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

    def expect(self, pattern, seconds=DEADLINE_SECONDS):
        """Waits for a match of the regular expression; returns the text before it and the match."""
        end = time.monotonic() + seconds
        while True:
            match = re.search(pattern, self.output, re.DOTALL)
            if match:
                before = self.output[: match.start()]
                self.output = self.output[match.end():]
                return before, match
            if time.monotonic() > end or not self._pump(0.1):
                raise AssertionError(
                    f"{pattern!r} was not printed. Output: {self.output[-2000:]!r}\nLog: {self.log[-2000:]!r}")

    def wait(self, seconds=DEADLINE_SECONDS):
        """Waits for the end; returns exit status and the rest of the output."""
        end = time.monotonic() + seconds
        while self._pump(0.05) and time.monotonic() < end:
            if self.process.poll() is not None:
                while select.select([e for e in (self.read_end, self.error_end) if e is not None], [], [], 0)[0]:
                    before = (self.output, self.log)
                    if not self._pump(0) or before == (self.output, self.log):
                        break
                break
        status = self.process.wait(max(0.1, end - time.monotonic()))
        while select.select([self.error_end], [], [], 0)[0]:
            before = self.log
            self._pump(0)
            if self.log == before:
                break
        return status, self.output


class Router(Program):
    """A practice router, ready when constructed."""

    def __init__(self, domain, name="r1", *options):
        super().__init__("zul-practice-router", "--domain", domain, "--name", name, *options)
        self.expect(r"ready: [^\n]*\n")


class Shell(Program):
    PROMPT = "ZUL Routing Service> "

    def __init__(self, domain, *options, program="zulrssh", **keywords):
        super().__init__(program, "-domainId", domain, *options, **keywords)

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

    def connect(self, router="r1"):
        """Waits until the router has discovered the shell and answers it."""
        end = time.monotonic() + DEADLINE_SECONDS
        while time.monotonic() < end:
            if not self.run(f"enable {router} NoSuchEntity").startswith("No response"):
                return
        raise AssertionError(f"{router} never answered")


SIGNALS = (signal.SIGTERM, signal.SIGHUP, signal.SIGINT, signal.SIGABRT, signal.SIGPIPE)

"""zulctl tree in its three forms; zulctl shell on a terminal and on a pipe."""

import fcntl
import json
import os
import pathlib
import pty
import re
import resource
import select
import signal
import stat
import struct
import subprocess
import tempfile
import termios
import time
import unittest

from control import SHORT_LEASE, ControlTest
from processes import BIN, POLL, WRITE, Program

NESTED = """<dds><routing_service name="top"><domain_route name="d"><participant_1><domain_id>5</domain_id></participant_1>
<participant_2><domain_id>6</domain_id></participant_2><session name="s1" enabled="false">
<auto_topic_route name="t"><input participant="1"/><output/></auto_topic_route></session><session name="s2"/></domain_route>
</routing_service></dds>"""


class Tree(ControlTest):
    domain = 72

    def test_entities_with_their_state_as_text_graph_and_rows(self):
        self.router("r\"1\\\n\x1b[2J", "--config", self.file("document.xml", NESTED))
        self.router("empty")
        self.router("*")  # is not asked, or everybody would be
        self.assertEqual(self.run_text("unload", "empty")[0], 0)
        status, out, log = self.run_text("--discovery", "1", "tree", "--all")
        self.assertEqual((status, out, log), (1, r"""r"1\\x0a\x1b[2J: routing_service top
`-- domain_route d [enabled]
    |-- session s1 [disabled]
    |   `-- auto_topic_route t [enabled]
    `-- session s2 [enabled]
""", "zulctl: empty: error: no configuration is loaded; load one first\n"))
        status, rows = self.run_json("--discovery", "1", "tree", "*")
        self.assertEqual((status, [(row["path"], row["state"]) for row in rows if "path" in row]), (1, [
            ("", "unknown"), ("d", "enabled"), ("d::s1", "disabled"), ("d::s1::t", "enabled"), ("d::s2", "enabled")]))
        self.assertEqual([row["status"] for row in rows if "status" in row], ["error"])
        status, out, _ = self.run_text("--discovery", "1", "tree", "r*", "--dot")
        string = r'"(?:[^"\\\n]|\\["\\])*"'
        attribute = rf"(?:\w+=(?:\w+|{string}))"
        statement = rf"(?:{attribute};|\w+(?: \[{attribute}(?:, {attribute})*\])?;|\w+ -> \w+;|(?:di|sub)graph \w+ {{|}})"
        self.assertRegex(out, rf"\A(?:\s*{statement})+\s*\Z")
        self.assertEqual((status, out.count("{"), out.count("->"), out.count("dashed")), (0, out.count("}"), 4, 1))
        self.assertIn(r'label="r\"1\\\\x0a\\x1b[2J"', out)
        self.assertEqual(self.run_text("--json", "tree", "x", "--dot")[0], 2)


LEFT, UP, SEARCH, INTERRUPT, END = "\x1b[D", "\x1b[A", "\x12", "\x03", "\x04"
ROUTE = "DefaultDomainRoute"


class Prompt(Program):
    """The shell on a terminal."""

    def __init__(self, domain, home, *options, **environment):
        super().__init__("zulctl", "-d", domain, *options, "shell", terminal=True,
                         env={"HOME": home, "TERM": "xterm", "XDG_STATE_HOME": "", **environment})
        fcntl.ioctl(self.write_end, termios.TIOCSWINSZ, struct.pack("4H", 50, 1000, 0, 0))  # no line is broken
        self.lines = pathlib.Path(home, ".local/state/zulctl/history")

    def prompt(self):
        return self.expect("zulctl> ")[0]

    def type(self, text, shown):
        self.send(text)
        return self.expect(shown)[0]

    def ask(self, text, shown):
        """Types, and waits for the prompt after what is shown."""
        return self.type(text, shown) + self.prompt()

    def is_plain(self):
        """Whether the terminal shows what is typed and gives whole lines, as it did before."""
        return termios.tcgetattr(self.write_end)[3] & (termios.ECHO | termios.ICANON) == termios.ECHO | termios.ICANON

    def hang_up(self):
        self.open_ends.discard(self.read_end)
        os.close(self.read_end)
        self.read_end = self.write_end = None


class Shell(ControlTest):
    domain = 73

    def setUp(self):
        self.home = self.enterContext(tempfile.TemporaryDirectory())

    def start(self, *options, **environment):
        prompt = self.enterContext(Prompt(self.domain, self.home, *options, **environment))
        prompt.prompt()
        return prompt

    def test_keys_edit_and_lines_are_found_again_in_the_next_session(self):
        self.router("r")
        first = self.start()
        first.type("enable r noe" + LEFT + "n\n", "named none\n")
        first.type("junk", "junk")
        first.type(INTERRUPT, "zulctl> ")
        first.type("enable r two\n", "named two\n")
        first.type("enable r 'a  b\\'\"c \\\"\" \n", r"named a b\\c \"\n")
        first.type(b"enable r \xffW\xc3\xbc\n", "named \ufffdW\u00fc\n")
        first.type("'\n", "zulctl> ")
        first.send(END)
        self.assertEqual(first.wait()[0], 2)
        self.assertTrue(first.is_plain())
        self.assertIn("a quote is not closed", first.log)
        self.assertEqual(stat.S_IMODE(os.stat(first.lines).st_mode), 0o600)
        self.assertEqual(first.lines.read_text("utf-8").splitlines()[:2], ["enable r none", "enable r two"])
        second = self.start()
        second.ask(4 * UP + "\x7f\x7f\x7fthree\n", "named three\n")
        second.type(SEARCH + "non", "none")
        second.ask("\n", "named none\n")
        with open(first.lines, encoding="utf-8") as file:
            fcntl.flock(file, fcntl.LOCK_SH)  # whoever reads it does not hold up commands
            second.ask("enable r last\n", "named last\n")
        second.send("exit\n")
        self.assertEqual(second.wait()[0], 3)

    def test_words_are_completed_from_what_is_there(self):
        self.router("plant one")
        self.router("plant two")
        self.router("bad\x1b[2J")
        prompt = self.start("--discovery", "1")
        prompt.ask("list\n", "bad")
        prompt.type("disa\t", "ble ")
        prompt.type("pl\t", r"ant\\ ")
        prompt.type("\t", "\nplant one  plant two\n")
        prompt.type("o\t", "ne ")
        prompt.type("D\t", ROUTE[1:])
        prompt.type("::\t", "DefaultSession")
        prompt.ask("\n", f"plant one: disabled {ROUTE}::DefaultSession\n")
        prompt.type("get 'plant two,plant o\t", "ne' ")
        prompt.type("--out\t", "put ")
        prompt.type(self.home + "/.lo\t", "cal/")
        prompt.type(f" --output={self.home}/.lo\t", "cal/")
        prompt.type(" -- --out\tx", "--out[^p]*x")
        prompt.type(INTERRUPT, "zulctl> ")
        # A router that does not answer holds up nothing.
        self.router("quiet", "--silent")
        prompt.ask("-t 0.1 --discovery 20 enable quiet\n", "no answer: silent")
        begin = time.monotonic()
        prompt.type("enable quiet \tx", "quiet [^\n]*x")
        self.assertLess(time.monotonic() - begin, 5)

    def test_each_of_many_pasted_lines_has_its_result_beside_it_and_nothing_waits_for_discovery(self):
        self.router("r")
        prompt = self.start("--discovery", "10")
        prompt.ask("tree r*\n", "auto_topic_route All")
        begin = time.monotonic()
        lines = [f"enable {['r', '*', '--all'][i % 3]} none{i} # {'x' * 400}" for i in range(20)]
        prompt.send("\n".join(lines) + "\n")
        for i, line in enumerate(lines):
            echo, answer = prompt.expect(f"r: no such entity: [^\n]*")
            self.assertEqual((re.sub(r"[ \r]|\x1b\[\w+", "", echo), answer[0][-len(f" none{i}"):]),
                             (("" if i == 0 else "\nzulctl>") + line.replace(" ", "") + "\n", f" none{i}"))
        self.assertLess(time.monotonic() - begin, 10)

    def test_an_interrupt_ends_the_wait_and_a_signal_or_hang_up_the_shell(self):
        router = self.router("quiet", "--silent")
        prompt = self.start()
        prompt.send("enable quiet\n")
        router.expect("ENABLE [^\n]*kept back")
        prompt.ask(INTERRUPT, "quiet: interrupted; [^\n]*\n")
        prompt.send("exit\n")
        self.assertEqual(prompt.wait()[0], 5)
        for end in (lambda shell: shell.signal(signal.SIGTERM), lambda shell: shell.signal(signal.SIGHUP), Prompt.hang_up):
            for line in ("help exit\n", "pause quiet\n"):
                shell = self.start()
                if line.startswith("pause"):
                    shell.send(line)
                    router.expect("PAUSE [^\n]*kept back")
                else:
                    shell.type(line, "zulctl> ")
                end(shell)
                self.assertEqual(shell.wait()[0], 5, (line, end))
                self.assertTrue(shell.write_end is None or shell.is_plain())
                self.assertEqual(shell.lines.read_text("utf-8").splitlines()[-1], line.rstrip())

    def test_stopped_it_gives_the_terminal_back_and_draws_its_prompt_once(self):
        router = self.router("quiet", "--silent")
        prompt = self.start()
        def stop_and_go_on():
            prompt.signal(signal.SIGTSTP)
            prompt.until(lambda: os.waitid(os.P_PID, prompt.process.pid, os.WSTOPPED | os.WNOHANG | os.WNOWAIT), "it did not stop")
            self.assertTrue(prompt.is_plain())
            prompt.signal(signal.SIGCONT)
        prompt.type("hel", "hel")
        stop_and_go_on()
        prompt.ask("p get\n", "print the router's configuration")
        prompt.send("enable quiet\n")
        router.expect("ENABLE [^\n]*kept back")
        stop_and_go_on()
        prompt.ask(INTERRUPT, "quiet: interrupted")
        self.assertNotIn("zulctl>", prompt.type("exit\n", "exit"))
        self.assertEqual(prompt.wait()[0], 5)
        with Program("/bin/bash", "--norc", "-i", terminal=True, env={"HOME": self.home, "PS1": "bash-$ "}) as bash:
            for line in ("help exit\n", "pause quiet\n"):  # stopped at the prompt and in a wait it can be ended
                bash.send(f"{BIN}/zulctl -d {self.domain} shell\n")
                bash.expect("zulctl> ")
                bash.send(line)
                router.expect("PAUSE [^\n]*kept back") if line.startswith("pause") else bash.expect("zulctl> ")
                bash.send("\x1a")
                bash.until(lambda: re.search("Stopped.*bash-[^ ]* ", bash.log, re.DOTALL), "it does not stop")
                bash.log = ""
                bash.send("kill %1; until wait %1; s=$?; [ $s -lt 128 ]; do :; done; echo status $s\n")
                bash.expect("status 5\n")

    def test_an_answer_or_a_document_is_typed_on_a_terminal_that_shows_and_edits_it(self):
        self.router("r")
        prompt = self.start()
        for line, shown in (("check -\n", "-:[^\n]*\n"), ("load r c --file /dev/stdin\n", "r: error: ")):
            prompt.send(line)
            prompt.until(prompt.is_plain, "it waits in the editor's mode")
            prompt.ask("<ddx\x7fs\n" + END, shown)
        wanted = pathlib.Path(self.home, "wanted.xml")
        prompt.type(f"get r -o {wanted}\n", "written")
        wanted.write_text(wanted.read_text("utf-8").replace("<domain_id>1<", "<domain_id>7<"), "utf-8")
        prompt.prompt()
        prompt.send(f"apply r {wanted} --backup {self.home}/before.xml\n")
        prompt.until(lambda: "Send 3 commands to r? [y/N] " in prompt.log, "it does not ask")
        self.assertTrue(prompt.is_plain())
        prompt.ask("n\x7fy\n", "r: runs what ")
        prompt.type(f"apply r {wanted}\n", "nothing is to be sent")

    def test_a_file_that_takes_nothing_holds_a_command_up_until_an_interrupt(self):
        self.router("r")
        pipe = os.path.join(self.home, "pipe")
        os.mkfifo(pipe)
        with open(os.open(pipe, os.O_RDWR), "wb", buffering=0) as full:
            fcntl.fcntl(full, fcntl.F_SETPIPE_SZ, 4096)
            full.write(4096 * b"x")
            shell = self.start()
            shell.send(f"get r -o {pipe}\n")
            shell.wait_until_in(WRITE)
            shell.send(INTERRUPT)
            shell.wait_until_in(POLL)

    def test_lines_of_a_pipe_without_prompt_or_history(self):
        self.router("r")
        def run(text, *options):
            return self.run_text(*options, "shell", input=text.encode(), env=dict(os.environ, HOME=self.home))
        self.assertEqual(run(f"# a comment\n\ndisable r {ROUTE}\nenable r {ROUTE} # again\nenable r none"),
                         (3, f"r: disabled {ROUTE}\nr: enabled {ROUTE}\nr: no such entity: no entity named none\n", ""))
        status, out, log = run("fly\nshell\nenable r \\\nenable r 'x\nenable r a b c\n-d 75 --discovery 0.1 enable r\nquit\nlist\n", "--json")
        self.assertEqual((status, [json.loads(line)["status"] for line in out.splitlines()]), (4, ["no_answer"]))
        for expected in ("fly", "this is the shell", "ends in a backslash", "quote is not closed", "usage: zulctl enable"):
            self.assertIn(expected, log)
        self.assertEqual((run("")[0], run("help enable\n")[0], os.listdir(self.home)), (0, 0, []))
        with Program("zulctl", "-d", self.domain, "shell") as waiting:
            waiting.send("help\n")
            waiting.expect("Subcommands")
            waiting.signal(signal.SIGINT)
            self.assertEqual(waiting.wait()[0], 5)

    def test_an_answer_cut_off_by_a_terminal_that_changes_its_size(self):
        long = f"<dds><routing_service name='S'><documentation>{'x' * 1000000}</documentation></routing_service></dds>"
        self.router("r", "--config", self.file("long.xml", long))
        with Prompt(self.domain, self.home) as shell:
            shell.prompt()
            shell.type("get r\n", "x{1000}")
            for _ in range(20):  # the first one ends a write that has written something
                shell.interrupt_write(signal.SIGWINCH)
            self.assertEqual(shell.prompt().count("x"), 999000)
            shell.type("get r\n", "x{1000}")
            for _ in range(2):
                shell.interrupt_write(signal.SIGINT)
            shell.ask("help get\n", "print the router")

    def test_the_terminal_edits_where_the_user_wants_it_and_an_interrupt_ends_one_help_only(self):
        pathlib.Path(self.home, ".editrc").write_text("edit off\n", "utf-8")
        prompt = self.start()
        self.assertTrue(prompt.is_plain())
        prompt.send("\x13help\n")  # Ctrl-S: nothing is shown until Ctrl-Q
        prompt.interrupt_write(signal.SIGINT)
        prompt.ask("\x11help save\n", "] save ROUTERS")
        prompt.send(END)
        self.assertEqual((prompt.wait()[0], prompt.log), (0, ""))

    @unittest.skipIf(os.environ.get("ZUL_SANITIZE"), "a sanitizer needs descriptors of its own")
    def test_a_line_without_memory_and_a_wait_that_fails_for_ever(self):
        with Program("zulctl", "-d", self.domain, "shell") as shell:
            shell.wait_until_idle()
            big = os.path.join(self.home, "big")
            with open(big, "wb") as file:
                file.truncate(200 << 20)
            with open(f"/proc/{shell.process.pid}/statm", encoding="ascii") as file:
                limit = int(file.read().split()[0]) * resource.getpagesize() + (100 << 20)
            resource.prlimit(shell.process.pid, resource.RLIMIT_AS, (limit, limit))
            shell.send(f"check {big}\nhelp\n")
            shell.expect("Subcommands")
            self.assertEqual(shell.log, "zulctl: out of memory\n")
            resource.prlimit(shell.process.pid, resource.RLIMIT_NOFILE, (1, 1))  # poll refuses two descriptors
            shell.send("help\n")
            self.assertEqual((shell.wait()[0], shell.log), (2, "zulctl: out of memory\nzulctl: cannot read standard input: Invalid argument\n"))

    def test_a_router_that_was_given_up_and_came_back_is_asked_again(self):
        router = self.router("r", env={"FASTRTPS_DEFAULT_PROFILES_FILE": self.file("profile.xml", SHORT_LEASE)})
        shell = self.enterContext(Program("zulctl", "-d", self.domain, "--discovery", "0.1", "-t", "0.1", "shell"))
        def ask(expected):
            shell.repeat_until(lambda: shell.send("enable r none\n"), expected)
        ask("no entity named none")
        router.signal(signal.SIGSTOP)
        ask("no answer: gone")
        router.signal(signal.SIGCONT)
        shell.wait_until_idle()
        shell.output = ""
        shell.send("-t 20 --discovery 20 enable r back\n")
        self.assertIn("named back", shell.expect("r: [^\n]*\n")[1][0])

    def test_a_long_upload_or_answer_shows_how_far_it_is_on_a_terminal_only(self):
        router = self.router("big", "--count-only")
        self.router("slow", "--delay-ms", "700", "--parts", "30")
        document = self.file("document", "x" * 6_000_000)
        master, terminal = pty.openpty()
        self.addCleanup(os.close, master)
        shell = self.enterContext(subprocess.Popen([os.path.join(BIN, "zulctl"), "-d", str(self.domain), "shell"], stdin=subprocess.PIPE,
                                                   stdout=subprocess.PIPE, stderr=terminal))
        os.close(terminal)
        def run(line):
            shell.stdin.write(f"{line}\n".encode())
            shell.stdin.flush()
        run("enable big none")
        self.assertIn(b"big: ", shell.stdout.readline())
        router.signal(signal.SIGSTOP)  # its window fills
        run(f"load big c --file {document}")
        shown = b""
        def await_shown(pattern):
            nonlocal shown
            while not re.search(pattern, shown):
                shown = shown[-100:] + os.read(master, 1024)
        await_shown(rb"\rbig: 4\.\d MB of 6\.0 MB sent")
        router.signal(signal.SIGCONT)
        self.assertIn(b"big: ", shell.stdout.readline())
        run("get slow")
        await_shown(rb"\rslow: 0\.0 MB received in 1 part")
        shell.stdin.close()
        while select.select([master], [], [], 0)[0] or shell.poll() is None:
            try:
                shown = (shown + os.read(master, 1024))[-200:]
            except OSError:  # it is closed
                break
        self.assertRegex(shown, rb"parts?\r {20,}\r\Z")
        self.assertEqual(self.run_text("load", "big", "c", "--file", document)[2], "")

    def test_without_a_place_for_the_history_one_warning(self):
        for environment in ({"HOME": ""}, {"XDG_STATE_HOME": self.file("file", "")}):
            prompt = self.start(**environment)
            prompt.type("enable ''\n", "zulctl> ")
            prompt.send("exit\n")
            self.assertEqual((prompt.wait()[0], prompt.log.count("no history is kept"), prompt.log.count("\n")), (2, 1, 2), prompt.log)

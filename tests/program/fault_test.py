"""Routers and networks in trouble: wrong, late, duplicate and undecodable answers, routers that die, and signals at every
moment."""

import os
import re
import signal
import tempfile

from processes import Router, SessionTest, Shell


class Faults(SessionTest):
    domain = 24

    def test_answers_that_belong_to_no_request(self):
        for number, fault in enumerate((["--wrong-invocation"], ["--duplicate"], ["--garbage", "2500"])):
            name = f"r{number}"
            shell = self.shell("-timeout", "60", router=self.router(name, *fault))
            for _ in range(2):
                self.assertRegex(shell.run(f"disable {name} DefaultDomainRoute"), r"\AResult: disabled .*\n\Z", fault)
                self.assertRegex(shell.run(f"enable {name} DefaultDomainRoute"), r"\AResult: enabled .*\n\Z", fault)

    def test_many_parts_under_a_storm_of_signals(self):
        shell = self.shell("-timeout", "20", router=self.router("r1", "--parts", "100"))
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

    def test_router_killed_in_the_middle_of_an_upload(self):
        other = self.router("other")
        shell = self.shell("-timeout", "3", router=other)
        with tempfile.TemporaryDirectory() as directory:
            fifo = os.path.join(directory, "document.xml")
            os.mkfifo(fifo)
            source = os.open(fifo, os.O_RDWR)  # a writer that is there from the beginning
            with Router(self.domain, "victim") as victim:
                shell.connect(victim)
                shell.send(f"load victim Plant {fifo} local\n")
                os.write(source, b" " * 40000)
                victim.expect("LOAD")
            # More than may stay unacknowledged: the shell waits for room until the dead router's lease has run out.
            os.set_blocking(source, False)
            left = 1_000_000
            while left > 0:
                try:
                    left -= os.write(source, b" " * min(left, 40000))
                except BlockingIOError:
                    shell.read(0.05)
            os.close(source)
            self.assertEqual(shell.expect(re.escape(Shell.PROMPT), 90)[0],
                             "Error sending request\nNo response received\n")
        self.assertRegex(shell.run("get other"), r"\AResult: <dds>")

    def test_signal_ends_a_router_that_computes_or_waits_for_a_shell(self):
        pairs = "".join(f"<element><name>p{i}</name><value>1</value></element>" for i in range(60000))
        update = self.file("update.xml", f"<domain_route><property><value>{pairs}</value></property></domain_route>")
        for computes in (True, False):
            router = self.router()
            shell = self.shell(router=router)
            shell.send(f"update r1 DefaultDomainRoute {update} local\n")
            router.expect("piece 700,")
            if not computes:
                router.expect("OK updated")
                shell.send("get r1\n")
                router.expect("GET")
                shell.signal(signal.SIGSTOP)
                router.wait_until_idle()  # more parts than it may send without acknowledgement
            router.signal(signal.SIGTERM)
            self.assertEqual(router.wait(4.5)[0], 0, "a blocked write once lasted 5 s, this update minutes")

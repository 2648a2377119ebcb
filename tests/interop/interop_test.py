"""The examples of docs/wire.md on another maker's DDS stack: what the shell sends it, and what it answers among samples that are
no answers."""

import os
import pathlib
import re
import struct
import tempfile
import unittest

from cyclone import CycloneRouter
from processes import Shell


# The bytes of each example, without what they mean.
EXAMPLES = {name: bytes.fromhex(re.sub(r"  .*", "", lines)) for name, lines in re.findall(
    r"^```hex (\S+)\n(.*?)^```", pathlib.Path(__file__).parents[2].joinpath("docs/wire.md").read_text("utf-8"), re.M | re.S)}


def request(name, identity):
    return EXAMPLES[name][:8] + struct.pack("<iii", *identity) + EXAMPLES[name][20:]


def response(name, identity, is_final=True):
    order = "<" if EXAMPLES[name][1] else ">"
    return EXAMPLES[name][:4] + struct.pack(order + "iii", *identity) + EXAMPLES[name][16:-1] + bytes([is_final])


class InteropTest(unittest.TestCase):
    def start(self, domain, product):
        self.router = self.enterContext(CycloneRouter(domain, product))
        self.shell = self.enterContext(Shell(domain, "-timeout", 2, program=f"zul{product[0].lower()}ssh"))
        self.shell.prompt()

    def meet(self):
        """Asks until an answer arrives."""
        for _ in range(30):
            self.shell.send("get r1\n")
            while self.shell.PROMPT not in self.shell.output and self.shell.read(0.01):
                self.router.read(0.01)
                while "\n" in self.router.output:
                    self.sender, payload = self.router.request()
                    self.identity = list(struct.unpack_from("<iii", payload, 8))
                    self.router.write(response("answer", self.identity))
            if self.shell.prompt() == "Result: done\n":
                return
        raise AssertionError("the shell and the router do not reach each other")

    def exchange(self, command, example, answer, printed):
        """The final answer comes twice, after samples that answer nothing."""
        self.shell.send(command + "\n")
        self.identity[2] += 1
        sender, payload = self.router.request()
        self.assertEqual(request(example, self.identity), payload)
        # The request names its sender's host by the first word of the sender's GUID prefix.
        self.assertEqual(sender[:4], self.identity[0].to_bytes(4, "big", signed=True))
        host, app, invocation = self.identity
        strangers = [[host, app, invocation - 1], [host, app ^ 1, invocation], [host ^ 1, app, invocation]]
        self.router.write(*[response(answer, stranger) for stranger in strangers], b"\0\1\0\0" + b"\xff" * 40,
                   response(answer, self.identity, False), *[response(answer, self.identity)] * 2)
        self.assertEqual(printed, self.shell.prompt())

    def check_discovery(self, product):
        """The peer has accepted the shell as it announces itself: the participant, both endpoints, and no complaint."""
        with open(self.router.trace_file, encoding="latin-1") as file:
            trace = [line for line in file if ": config: " not in line]
        prefix = ":".join(format(int.from_bytes(self.sender[at:at + 4], "big"), "x") for at in (0, 4))
        for pattern in (
                rf'SPDP ST0 {prefix}:\S+ .* NEW .*"zul.service.version":"5.1.0".*entity_name="ZUL {product} Service: Shell"',
                rf"SEDP ST0 {prefix}:\S+ reliable volatile writer .*{self.router.topic}request/{self.router.type}Request .* NEW ",
                rf"SEDP ST0 {prefix}:\S+ reliable volatile reader .*{self.router.topic}response/{self.router.type}Response .* NEW "):
            self.assertRegex("".join(trace), pattern)
        self.assertEqual([], [line for line in trace if "malformed" in line or " dq.builtin: " in line and "invalid" in line])

    def test_examples_travel(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())
        local_file = os.path.join(self.folder, "x.xml")
        pathlib.Path(local_file).write_text("<x/>", "ascii")
        for domain, product in ((50, "Routing"), (51, "Federation")):
            with self.subTest(product):
                self.start(domain, product)
                self.meet()
                self.exchange("enable r1 dr1", "enable", "answer", "Result: donedone\n")
                self.exchange("get r1", "get", "answer-big-endian", "Error: (null)\n")
                self.exchange(f"update r1 dr1 {local_file} local", "update", "answer-big-endian", "Error: (null)\n")
                self.exchange("add_peer r1 dr1 p1 a,,bc", "add_peer", "answer", "Result: donedone\n")
                self.assertEqual((0, "Stopping...\n"), self.shell.exit())
                self.assertEqual("", self.shell.log + self.router.log)
                self.check_discovery(product)

"""The examples of docs/wire.md on another maker's DDS stack: what the shell sends it, and what it answers among samples that are
no answers.

Facts found with Cyclone DDS 0.10.2 and Fast DDS 2.9.1:
- The loopback interface does not claim to be capable of multicast, so Cyclone DDS would announce itself to nobody. With
  `multicast="true"` it uses it all the same, and both sides discover each other within 0.3 s: no peer lists are needed.
- With `ParticipantIndex` "auto" it receives on the standard's ports (7400 + 250 * domain and up) instead of random ones; Fast DDS
  takes the next free index by itself.
- Its trace tells what it was announced, and complains of what is malformed.
- Cyclone DDS delivers nothing of a reliable writer before that writer's first heartbeat, which Fast DDS does not repeat on
  request when it was lost in discovery: the first answer may come as late as the writer's next periodic heartbeat.
"""

import os
import pathlib
import re
import struct
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "support"))
os.environ.setdefault("FASTRTPS_DEFAULT_PROFILES_FILE", os.path.join(HERE, "..", "support", "loopback_profile.xml"))

from processes import BIN, Program, Shell  # noqa: E402

CONFIGURATION = """<CycloneDDS><Domain Id="any">
<General><Interfaces><NetworkInterface name="lo" multicast="true"/></Interfaces></General>
<Discovery><ParticipantIndex>auto</ParticipantIndex></Discovery>
<Tracing><Category>discovery,warning,error</Category><OutputFile>{trace}</OutputFile></Tracing>
</Domain></CycloneDDS>"""

# The bytes of each example, without what they mean.
EXAMPLES = {name: bytes.fromhex(re.sub(r"  .*", "", lines)) for name, lines in re.findall(
    r"^```hex (\S+)\n(.*?)^```", pathlib.Path(HERE, "../../docs/wire.md").read_text("utf-8"), re.M | re.S)}


def request(name, identity):
    return EXAMPLES[name][:8] + struct.pack("<iii", *identity) + EXAMPLES[name][20:]


def response(name, identity, is_final=True):
    order = "<" if EXAMPLES[name][1] else ">"
    return EXAMPLES[name][:4] + struct.pack(order + "iii", *identity) + EXAMPLES[name][16:-1] + bytes([is_final])


class InteropTest(unittest.TestCase):
    def start(self, domain, product):
        self.topic = f"zul/{product.lower()}_service/administration/command_"
        self.type = f"ZUL::{product}Service::Administration::Command"
        self.trace = os.path.join(self.folder, "trace" + product)
        self.router = self.enterContext(Program(
            os.path.join(os.path.abspath(BIN), "..", "tests", "zul_cyclone_router"), domain, self.topic, self.type,
            env={"CYCLONEDDS_URI": CONFIGURATION.format(trace=self.trace)}))
        self.router.expect("ready\n")
        self.shell = self.enterContext(Shell(domain, "-timeout", 2, program=f"zul{product[0].lower()}ssh"))
        self.shell.prompt()

    def read_request(self):
        """Waits for the next request; returns the prefix of its sender's GUID and the payload."""
        return [bytes.fromhex(word) for word in self.router.expect(r"(\w+) (\w+)\n")[1].groups()]

    def write(self, *payloads):
        self.router.send("".join(payload.hex() + "\n" for payload in payloads))

    def meet(self):
        """Asks until an answer arrives."""
        for _ in range(30):
            self.shell.send("get r1\n")
            while self.shell.PROMPT not in self.shell.output and self.shell.read(0.01):
                self.router.read(0.01)
                while "\n" in self.router.output:
                    self.sender, payload = self.read_request()
                    self.identity = list(struct.unpack_from("<iii", payload, 8))
                    self.write(response("answer", self.identity))
            if self.shell.prompt() == "Result: done\n":
                return
        raise AssertionError("the shell and the router do not reach each other")

    def exchange(self, command, example, answer, printed):
        """The final answer comes twice, behind samples that answer nothing."""
        self.shell.send(command + "\n")
        self.identity[2] += 1
        sender, payload = self.read_request()
        self.assertEqual(request(example, self.identity), payload)
        # The request names its sender's host by the first word of the sender's GUID prefix.
        self.assertEqual(sender[:4], self.identity[0].to_bytes(4, "big", signed=True))
        host, app, invocation = self.identity
        strangers = [[host, app, invocation - 1], [host, app ^ 1, invocation], [host ^ 1, app, invocation]]
        self.write(*[response(answer, stranger) for stranger in strangers], b"\0\1\0\0" + b"\xff" * 40,
                   response(answer, self.identity, False), *[response(answer, self.identity)] * 2)
        self.assertEqual(printed, self.shell.prompt())

    def check_discovery(self, product):
        """The peer has accepted the shell as it announces itself: the participant, both endpoints, and no complaint."""
        with open(self.trace, encoding="latin-1") as file:
            trace = [line for line in file if ": config: " not in line]
        prefix = ":".join(format(int.from_bytes(self.sender[at:at + 4], "big"), "x") for at in (0, 4))
        for pattern in (
                rf'SPDP ST0 {prefix}:\S+ .* NEW .*"zul.service.version":"5.1.0".*entity_name="ZUL {product} Service: Shell"',
                rf"SEDP ST0 {prefix}:\S+ reliable volatile writer .*{self.topic}request/{self.type}Request .* NEW ",
                rf"SEDP ST0 {prefix}:\S+ reliable volatile reader .*{self.topic}response/{self.type}Response .* NEW "):
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


if __name__ == "__main__":
    unittest.main()

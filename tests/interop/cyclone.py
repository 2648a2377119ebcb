"""A router on a DDS stack of another maker, and what it takes to meet the shell on the loopback interface.

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
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "support"))
os.environ.setdefault("FASTRTPS_DEFAULT_PROFILES_FILE", os.path.join(HERE, "..", "support", "loopback_profile.xml"))

import wire  # noqa: E402
from processes import BIN, DEADLINE_SECONDS, Program, Shell  # noqa: E402

CONFIGURATION = """<CycloneDDS><Domain Id="any">
<General><Interfaces><NetworkInterface name="lo" multicast="true"/></Interfaces></General>
<Discovery><ParticipantIndex>auto</ParticipantIndex></Discovery>
<Tracing><Category>discovery,warning,error</Category><OutputFile>{trace}</OutputFile></Tracing>
</Domain></CycloneDDS>"""
OK, NOT_FOUND = 0, 3
ANSWER = "no such entity"


class CycloneRouter(Program):
    """The router, ready when constructed."""

    def __init__(self, domain, product="Routing"):
        self.folder = tempfile.TemporaryDirectory()
        self.trace_file = os.path.join(self.folder.name, "trace")
        self.topic = f"zul/{product.lower()}_service/administration/command_"
        self.type = f"ZUL::{product}Service::Administration::Command"
        super().__init__(
            os.path.join(os.path.abspath(BIN), "..", "tests", "zul_cyclone_router"), domain, self.topic, self.type,
            env={"CYCLONEDDS_URI": CONFIGURATION.format(trace=self.trace_file)})
        self.expect("ready\n")

    def __exit__(self, *details):
        super().__exit__(*details)
        self.folder.cleanup()

    def request(self, seconds=DEADLINE_SECONDS):
        """Waits for the next request; returns the prefix of its sender's GUID and the payload."""
        return [bytes.fromhex(word) for word in self.expect(r"(\w+) (\w+)\n", seconds)[1].groups()]

    def write(self, payload):
        self.send(payload.hex() + "\n")

    def answer(self, identity, message, kind=OK, is_final=True, order="<"):
        self.write(wire.response(identity, kind, message, is_final, order))


class PeerShell(Shell):
    """The shell of either product."""

    def __init__(self, domain, product="Routing"):
        self.PROMPT = f"ZUL {product} Service> "
        super().__init__(domain, "-timeout", 2, program=f"zul{product[0].lower()}ssh")
        self.prompt()

    def meet(self, router, name):
        """Asks until an answer arrives; returns the sender's prefix and identity of the request, the last one that was read."""
        for _ in range(30):
            self.send(f"enable {name} NoSuchEntity\n")
            while self.PROMPT not in self.output and self.read(0.01):
                router.read(0.01)
                while "\n" in router.output:
                    sender, payload = router.request()
                    router.answer(wire.identity_of(payload), ANSWER, NOT_FOUND)
            if self.prompt() == f"Error: {ANSWER}\n":
                return sender, wire.identity_of(payload)
        raise AssertionError("the shell and the router do not reach each other")

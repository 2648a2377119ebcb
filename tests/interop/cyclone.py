"""A router on a DDS stack of another maker, and what it takes to meet it on the loopback interface.

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
import tempfile

from processes import BIN, Program

CONFIGURATION = """<CycloneDDS><Domain Id="any">
<General><Interfaces><NetworkInterface name="lo" multicast="true"/></Interfaces></General>
<Discovery><ParticipantIndex>auto</ParticipantIndex></Discovery>
<Tracing><Category>discovery,warning,error</Category><OutputFile>{trace}</OutputFile></Tracing>
</Domain></CycloneDDS>"""


class CycloneRouter(Program):
    """The router, ready when constructed."""

    def __init__(self, domain, product="Routing", *options):
        self.folder = tempfile.TemporaryDirectory()
        self.trace_file = os.path.join(self.folder.name, "trace")
        self.topic = f"zul/{product.lower()}_service/administration/command_"
        self.type = f"ZUL::{product}Service::Administration::Command"
        super().__init__(
            os.path.join(os.path.abspath(BIN), "..", "tests", "zul_cyclone_router"), domain, self.topic, self.type, *options,
            env={"CYCLONEDDS_URI": CONFIGURATION.format(trace=self.trace_file)})
        self.expect("ready\n")

    def __exit__(self, *details):
        super().__exit__(*details)
        self.folder.cleanup()

    def request(self):
        """Waits for the next request; returns the prefix of its sender's GUID and the payload."""
        return [bytes.fromhex(word) for word in self.expect(r"(\w+) (\w+)\n")[1].groups()]

    def write(self, *payloads):
        self.send("".join(payload.hex() + "\n" for payload in payloads))

"""A router on a DDS stack of another maker, and what it takes to meet the shell on the loopback interface.

Facts found with Cyclone DDS 0.10.2 and Fast DDS 2.9.1:
- The loopback interface does not claim to be capable of multicast, so Cyclone DDS would announce itself to nobody. With
  `multicast="true"` it uses it all the same, and both sides discover each other within 0.3 s: no peer lists are needed.
- With `ParticipantIndex` "auto" it receives on the standard's ports (7400 + 250 * domain and up) instead of random ones; Fast DDS
  takes the next free index by itself. A capture can then select a whole domain by its ports.
- Cyclone DDS delivers nothing of a reliable writer before that writer's first heartbeat, which Fast DDS does not repeat on
  request when it was lost in discovery: the first answer may come as late as the writer's next periodic heartbeat.
"""

import json
import os
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "support"))
os.environ.setdefault("FASTRTPS_DEFAULT_PROFILES_FILE", os.path.join(HERE, "..", "support", "loopback_profile.xml"))

from processes import BIN, DEADLINE_SECONDS, Program, Shell  # noqa: E402

CONFIGURATION = """<CycloneDDS><Domain Id="any">
<General><Interfaces><NetworkInterface name="lo" multicast="true"/></Interfaces></General>
<Discovery><ParticipantIndex>auto</ParticipantIndex></Discovery>
<Tracing><Category>discovery,warning,error</Category><OutputFile>{trace}</OutputFile></Tracing>
</Domain></CycloneDDS>"""

PRODUCTS = {"zulrssh": "ZUL Routing Service", "zulfssh": "ZUL Federation Service"}


class CycloneRouter(Program):
    """The router, ready when constructed."""

    def __init__(self, domain, name, *options):
        self.folder = tempfile.TemporaryDirectory()
        self.trace_file = os.path.join(self.folder.name, "trace")
        super().__init__(
            os.path.join(os.path.abspath(BIN), "..", "tests", "zul_cyclone_router"), "--domain", domain, "--name", name,
            *options, env={"CYCLONEDDS_URI": CONFIGURATION.format(trace=self.trace_file)})
        self.expect("ready\n")

    def __exit__(self, *details):
        super().__exit__(*details)
        self.folder.cleanup()

    def request(self):
        """Waits for the next request and returns what was decoded of it."""
        request = json.loads(self.expect(r"([^\n]*)\n")[1].group(1))
        if "fault" in request:
            raise AssertionError(f"the router cannot read a request: {request}")
        return request

    def unread(self):
        """What has been printed and not yet been waited for."""
        self.read(0)
        return self.output

    def trace(self):
        """The lines that the stack's discovery and its warnings have left."""
        with open(self.trace_file, encoding="latin-1") as file:
            return [line for line in file if ": config: " not in line]


class PeerShell(Shell):
    """The shell of either product, with a time-out of a second."""

    def __init__(self, domain, program="zulrssh"):
        self.PROMPT = PRODUCTS[program] + "> "
        super().__init__(domain, "-timeout", 1, program=program)
        self.prompt()

    def meet(self, router, name):
        """Asks until the router answers; returns the request that it has answered, the last one that it has read."""
        end = time.monotonic() + DEADLINE_SECONDS
        printed = ""
        while not printed.startswith("Error: "):  # the entity does not exist, says the router
            if time.monotonic() > end:
                raise AssertionError(f"never answered; the shell printed {printed!r}, the router {router.unread()!r}")
            printed = self.run(f"enable {name} NoSuchEntity")
        answered = json.loads(printed.removeprefix("Error: "))
        while router.request() != answered:
            pass
        return answered

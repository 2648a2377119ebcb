"""What a protocol analyser sees of a domain on the loopback interface."""

import re
import shutil
import signal
import socket
import time

from cyclone import DEADLINE_SECONDS, Program

# A message whose only submessage, a DATA of 32 bytes, is cut short: shows that the capture runs, and that it sees what is wrong.
MALFORMED_PREFIX = "ba" * 12
MALFORMED = b"RTPS" + bytes([2, 3, 1, 15]) + bytes.fromhex(MALFORMED_PREFIX) + bytes([0x15, 0x05, 32, 0, 0, 0])
FIELDS = {"malformed": "_ws.malformed", "prefix": "rtps.guidPrefix.src", "name": "rtps.param.entityName",
          "properties": "rtps.property_name", "values": "rtps.property_value", "parameters": "rtps.param.id",
          "data": "rtps.issueData"}


class Capture(Program):
    """tshark on the loopback interface, one line for each frame of the domain."""

    def __init__(self, domain):
        first = 7400 + 250 * domain  # the standard gives each domain 250 ports
        self.unused_port = first + 249  # belongs to no participant
        fields = [argument for field in FIELDS.values() for argument in ("-e", field)]
        super().__init__(shutil.which("tshark") or "/the package tshark is missing", "-l", "-n", "-i", "lo",
                         "-f", f"udp portrange {first}-{self.unused_port}", "-T", "fields", "-E", "aggregator=|", *fields)
        self.frames = []

    def __exit__(self, *details):
        if self.process.poll() is None:
            self.signal(signal.SIGINT)  # unlike a kill, lets it end its capturing process and remove its file
            self.wait()
        super().__exit__(*details)

    def wait_for(self, condition, between=lambda: None):
        """Reads up to a frame that meets the condition; None when none came in time or the capture has ended."""
        end = time.monotonic() + DEADLINE_SECONDS
        while time.monotonic() < end and self.process.poll() is None:
            between()
            self.read(0.2)
            while "\n" in self.output:
                line, self.output = self.output.split("\n", 1)
                frame = dict(zip(FIELDS, line.split("\t"), strict=True))
                if frame["prefix"] != MALFORMED_PREFIX:
                    self.frames.append(frame)
                if condition(frame):
                    return frame
        return None

    def start(self, test):
        """Sends the malformed message until the capture shows it; returns why there is none, if that is not permitted."""
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
            shown = self.wait_for(lambda frame: frame["prefix"] == MALFORMED_PREFIX,
                                  lambda: sender.sendto(MALFORMED, ("127.0.0.1", self.unused_port)))
        if shown is None:
            self.wait(1)
            if re.search("permission|not permitted", self.log):
                return "capturing on the loopback interface is not permitted: run as root, or let this user run dumpcap"
            test.fail(f"tshark shows no frame: {self.log}")
        test.assertNotEqual("", shown["malformed"], "a malformed frame is not seen as such")
        return None

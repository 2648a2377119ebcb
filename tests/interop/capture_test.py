"""What a protocol analyser sees of an exchange: no malformed frame, and the shell's participant as it announces itself."""

import re
import shutil
import signal
import socket
import time
import unittest

from cyclone import ANSWER, DEADLINE_SECONDS, CycloneRouter, PeerShell, Program

DOMAIN = 53
FIRST_PORT = 7400 + 250 * DOMAIN  # the standard gives each domain 250 ports
LAST_PORT = FIRST_PORT + 249  # belongs to no participant
TYPE_INFORMATION = "0x0075"
# A message whose only submessage, a DATA of 32 bytes, is cut short: shows that the capture runs, and that it sees what is wrong.
MALFORMED_PREFIX = "ba" * 12
MALFORMED = b"RTPS" + bytes([2, 3, 1, 15]) + bytes.fromhex(MALFORMED_PREFIX) + bytes([0x15, 0x05, 32, 0, 0, 0])
FIELDS = ("frame.protocols", "_ws.malformed", "rtps.guidPrefix.src", "rtps.param.entityName", "rtps.property_name",
          "rtps.property_value", "rtps.param.id", "rtps.issueData")


class Capture(Program):
    """tshark on the loopback interface, one line for each frame of the domain."""

    def __init__(self):
        fields = [argument for field in FIELDS for argument in ("-e", field)]
        super().__init__(shutil.which("tshark"), "-l", "-n", "-i", "lo", "-f", f"udp portrange {FIRST_PORT}-{LAST_PORT}",
                         "-T", "fields", "-E", "aggregator=|", *fields)
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
                self.frames.append(dict(zip(FIELDS, line.split("\t"), strict=True)))
                if condition(self.frames[-1]):
                    return self.frames[-1]
        return None


class CaptureTest(unittest.TestCase):
    def start(self, capture):
        """Sends the malformed message until the capture shows it."""
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
            shown = capture.wait_for(
                lambda frame: frame["rtps.guidPrefix.src"] == MALFORMED_PREFIX,
                lambda: sender.sendto(MALFORMED, ("127.0.0.1", LAST_PORT)))
        if shown is None:
            capture.wait(1)
            if re.search("permission|not permitted", capture.log):
                self.skipTest("capturing on the loopback interface is not permitted: run as root, or let this user run dumpcap")
            self.fail(f"tshark shows no frame: {capture.log}")
        self.assertNotEqual("", shown["_ws.malformed"], "a malformed frame is not seen as such")

    def test_exchange(self):
        self.assertIsNotNone(shutil.which("tshark"), "install the package tshark")
        with Capture() as capture:
            self.start(capture)
            with CycloneRouter(DOMAIN) as router, PeerShell(DOMAIN) as shell:
                prefix, _ = shell.meet(router, "r1")
                answer = capture.wait_for(lambda frame: ANSWER.encode().hex() in frame["rtps.issueData"])
                self.assertIsNotNone(answer, "the answer was not captured")

        frames = [frame for frame in capture.frames if frame["rtps.guidPrefix.src"] != MALFORMED_PREFIX]
        self.assertEqual([], [frame for frame in frames if frame["_ws.malformed"]])

        of_shell = [frame for frame in frames if frame["rtps.guidPrefix.src"].startswith(prefix.hex())]
        self.assertNotEqual(of_shell, frames, "the router was not captured")
        named = [frame for frame in of_shell if frame["rtps.param.entityName"]]
        self.assertEqual({"ZUL Routing Service: Shell"}, {frame["rtps.param.entityName"] for frame in named})
        for frame in named:
            properties = dict(zip(frame["rtps.property_name"].split("|"), frame["rtps.property_value"].split("|"), strict=True))
            self.assertEqual("5.1.0", properties.get("zul.service.version"))
        # A peer of another maker drops an endpoint that comes with this parameter.
        self.assertEqual([], [frame for frame in of_shell if TYPE_INFORMATION in frame["rtps.param.id"].split("|")])


if __name__ == "__main__":
    unittest.main()

"""zulctl and a router on another maker's DDS stack, whose participant does not tell the router's name: exact bytes out, answers of
either byte order in."""

import json
import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "interop"))
import wire  # noqa: E402
from cyclone import CycloneRouter  # noqa: E402
from control import SCHEMA, faults  # noqa: E402
from processes import Program  # noqa: E402

ROUTER = "r\xfc 1"
GREETING, DESCRIPTION, DUMMY, NAME, PEERS = 9, 1, 2, 3, 4
SNIPPET = 'str://"<session><s><p> 5</p></s></session>"'
TEXT = "<!-- \xe9 ' \" & -->" * 500
INLINE = f'str://"{TEXT}"'
PIECES = [INLINE[at:at + 4096] for at in range(0, len(INLINE), 4096)]


class Interop(unittest.TestCase):
    domain = 69

    def test_every_form_of_a_request_in_both_products(self):
        peers = ["a", "b,c \xe9"]
        for product, arguments, requests in (
                ("Routing", ["enable", ROUTER, "d 1\xff"], [(7, NAME, "d 1\xff")]),
                ("Federation", ["get", ROUTER], [(13, DUMMY, 0)]),
                ("Routing", ["tree", ROUTER], [(13, DUMMY, 0)]),  # what comes back is no document
                ("Routing", ["add-peer", ROUTER, "d", "p1", *peers], [(14, PEERS, "d", True, peers)]),
                ("Federation", ["update", ROUTER, "--set", "session.s.p= 5"], [(4, DESCRIPTION, "", True, SNIPPET)]),
                ("Routing", ["load", ROUTER, "c", "--xml", TEXT],
                 [(1, DESCRIPTION, "c", piece is PIECES[-1], piece) for piece in PIECES])):
            options = ["--federation"] if product == "Federation" else []
            with self.subTest(arguments[0]), CycloneRouter(self.domain, product) as router, Program(
                    "zulctl", "-d", self.domain, "--discovery", 20, "--json", *options, *[os.fsdecode(word.encode("latin-1")) for word in arguments]) as control:
                while requests:
                    payload = router.request()[1]
                    identity = wire.identity_of(payload)
                    if payload == wire.request(identity, ROUTER, GREETING, DUMMY, 0):  # again until it is answered
                        router.write(wire.response(identity, 1, "it is me", True, "<"))
                    else:
                        self.assertEqual(payload, wire.request(identity, ROUTER, *requests.pop(0)))
                router.write(wire.response(identity, 0, "part 1,", False, ">"), wire.response(identity, 0, " part 2", True, "<"))
                status, out = control.wait()
                row = json.loads(out)
                self.assertEqual(faults(row, SCHEMA), [])
                self.assertEqual((status, row["parts"], row["status"]), (1, 2, "error") if "tree" in arguments else (0, 2, "ok"))
                self.assertRegex(row["message"], "no configuration: line 1" if "tree" in arguments else r"\Apart 1, part 2\Z")

    def test_a_router_of_another_data_representation_is_told_from_a_silent_one(self):
        with CycloneRouter(self.domain, "Routing", "ZUL Routing Service: r2"), Program(
                "zulctl", "-d", self.domain, "-t", "0.5", "--json", "why", "r2") as control:
            self.assertRegex(control.wait()[1], '"cause":"incompatible_qos".*DATA_REPRESENTATION: it does not read XCDR version 1')

    def test_apply_plans_from_what_another_stack_says(self):
        """Each request is exactly what was planned, and what runs at the end is read back and compared."""
        runs = '<dds><routing_service name="S">{}</routing_service></dds>'
        route = '<domain_route name="D"{}><connection_1 plugin_name="L::P"/><connection_2 plugin_name="L::P"/></domain_route>'
        stopped, running = runs.format(route.format(' enabled="false"')), runs.format(route.format(""))
        libraries = '<adapter_library name="L"><adapter_plugin name="P"><library_file>l</library_file><factory_function>f</factory_function>' \
                    '</adapter_plugin></adapter_library><routing_service'
        stopped, running = (text.replace("<routing_service", libraries) for text in (stopped, running))
        folder = self.enterContext(tempfile.TemporaryDirectory())
        wanted = os.path.join(folder, "wanted.xml")
        with open(wanted, "w", encoding="utf-8") as file:
            file.write(running)
        for last, expected, outcome in ((running, 0, "applied"), (stopped, 1, "differs")):
            with CycloneRouter(self.domain, "Routing") as router, Program(
                    "zulctl", "-d", self.domain, "--discovery", 3, "--json", "apply", os.fsdecode(ROUTER.encode("latin-1")), wanted,
                    "--yes", "--backup", os.path.join(folder, "before.xml")) as control:
                requests = [((13, DUMMY, 0), stopped), ((7, NAME, "D"), "enabled D"), ((13, DUMMY, 0), last)]
                while requests:
                    payload = router.request()[1]
                    identity = wire.identity_of(payload)
                    if payload == wire.request(identity, ROUTER, GREETING, DUMMY, 0):
                        router.write(wire.response(identity, 1, "it is me", True, "<"))
                        continue
                    request, answer = requests.pop(0)
                    self.assertEqual(payload, wire.request(identity, ROUTER, *request))
                    router.write(wire.response(identity, 0, answer[:99], False, ">"), wire.response(identity, 0, answer[99:], True, "<"))
                status, out = control.wait()
            rows = [json.loads(line) for line in out.splitlines()]
            self.assertEqual((status, [faults(row, SCHEMA) for row in rows], rows[-1]["outcome"]), (expected, [[]] * 3, outcome))


if __name__ == "__main__":
    unittest.main()

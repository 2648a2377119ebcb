"""Every command of the shell as exact bytes on another maker's DDS stack, and answers in both byte orders among samples that
are none."""

import os
import tempfile
import unittest

import wire
from cyclone import CycloneRouter, PeerShell

ROUTER = "r 1"  # with a blank: names travel whole
LOAD, UNLOAD, UPDATE, PAUSE, RESUME, ENABLE, DISABLE, ANNOUNCE, CREATE, DELETE, SAVE, GET, ADD_PEER = (
    1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14)
PIECE_SIZE = 4096
LONGEST_ANSWER_PART = "0123456789abcdef" * 256
DESCRIPTION, DUMMY, NAME, PEERS = 1, 2, 3, 4  # members of the command


def bare(kind):
    return [(kind, DUMMY, 0)]


def entity(kind, name):
    return [(kind, NAME, name)]


def upload(kind, name, text):
    """The requests that carry a text: full pieces, and the rest as the final one."""
    pieces = [text[at:at + PIECE_SIZE] for at in range(0, len(text), PIECE_SIZE)]
    return [(kind, DESCRIPTION, name, number == len(pieces), piece) for number, piece in enumerate(pieces, 1)]


def local_file(size):
    """XML of this many bytes, with quotes, line feeds and bytes outside ASCII."""
    text = '<dds name="caf\xe9 \xff">\n' + "".join(f"<!-- 'line' \"{number}\" & more -->\n" for number in range(size // 20))
    return text[: size - 7] + "\n</dds>"


def commands(folder):
    """The rest of a line behind the router's name, and the requests that it must become."""
    inline = "str://\"<domain_route name='d 1'><participant_1/></domain_route>\"\n"  # runs to the end of the line
    peers = [str(number) * 125 for number in range(10, 26)]
    table = [
        ("enable %s", entity(ENABLE, "")),
        ("enable %s DomainRoute", entity(ENABLE, "DomainRoute")),
        ("disable %s DomainRoute::Session", entity(DISABLE, "DomainRoute::Session")),
        ("pause %s " + "n" * 255, entity(PAUSE, "n" * 255)),
        ('resume %s "a b"', entity(RESUME, "a b")),
        ("delete %s d1", entity(DELETE, "d1")),
        ("unload %s", bare(UNLOAD)),
        ("save %s", bare(SAVE)),
        ("get %s", bare(GET)),
        ("add_peer %s d1 p1 udpv4://127.0.0.1,,b", [(ADD_PEER, PEERS, "d1", True, ["udpv4://127.0.0.1", "b"])]),
        ("add_peer %s d1 p2 " + ",".join(peers), [(ADD_PEER, PEERS, "d1", False, peers)]),
        ("load %s cfg " + inline.rstrip(), upload(LOAD, "cfg", inline)),
        ("load %s cfg site.xml", upload(LOAD, "cfg", "file://site.xml")),
        ("update %s d1 file:///etc/site.xml remote", upload(UPDATE, "d1", "file:///etc/site.xml")),
        ("update %s . domain_route.participant_1.domain_id=5", upload(
            UPDATE, "",
            'str://"<domain_route><participant_1><domain_id>5\n</domain_id></participant_1></domain_route>"')),
        ("create %s domain_route " + inline.rstrip(), upload(CREATE, "", inline)),
        ("create %s session d1 s.xml", upload(CREATE, "d1", "file://s.xml")),
    ]
    for size in (10_000, 4089, 4088, 0):  # with scheme and quotes: three pieces, one and a byte, one exactly, a part of one
        text = local_file(size) if size else ""
        path = os.path.join(folder, str(size))
        with open(path, "w", encoding="latin-1", newline="") as file:
            file.write(text)
        table.append((f"load %s cfg {path} local", upload(LOAD, "cfg", f'str://"{text}"')))
    return table


class InteropTest(unittest.TestCase):
    def expect_requests(self, expected, step=1, target=ROUTER):
        """Checks the router's next requests, which have one invocation, `step` above the last."""
        self.identity[2] += step
        for request in expected:
            sender, payload = self.router.request()
            self.assertEqual(wire.request(self.identity, target, *request), payload)
            # The request names its sender's host by the first word of the sender's GUID prefix.
            self.assertEqual(sender[:4], self.identity[0].to_bytes(4, "big", signed=True))

    def answer(self, text, order):
        """Two parts, the final one twice, behind samples that answer nothing."""
        host, app, invocation = self.identity
        for stranger in ([host, app, invocation - 1], [host, app ^ 1, invocation], [host ^ 1, app, invocation]):
            self.router.answer(stranger, "of another request", order=order)
        self.router.write(b"\0\1\0\0" + b"\xff" * 40)
        self.router.answer(self.identity, LONGEST_ANSWER_PART, is_final=False, order=order)
        for _ in range(2):
            self.router.answer(self.identity, text, order=order)

    def run_commands(self, shell):
        for number, (command, expected) in enumerate(commands(self.folder)):
            with self.subTest(command=command[:40]):
                shell.send(command % f'"{ROUTER}"' + "\n")
                self.expect_requests(expected)
                self.answer(f"done {number}", "<>"[number % 2])
                self.assertEqual(f"Result: {LONGEST_ANSWER_PART}done {number}\n", shell.prompt())

        # Only the last of a dupdate's requests is waited for (oddities 3 and 4).
        shell.send(f'dupdate "{ROUTER}" d1 session.s1=<\n')
        self.expect_requests(entity(DISABLE, "d1"))
        self.expect_requests(upload(UPDATE, "d1", 'str://"<session><s1>&lt;\n</s1></session>"'))
        self.expect_requests(entity(ENABLE, "d1"), 2)
        self.router.answer(self.identity, "done")
        self.assertEqual("Can't open local file session.s1=<\n\nNo response received\n", shell.prompt())

        self.assertEqual("", shell.run("hello"))
        self.expect_requests(bare(ANNOUNCE), target="*")

        self.assertEqual("No response received\n", shell.run("disable other d1"))
        self.expect_requests(entity(DISABLE, "d1"), target="other")

    def check_discovery(self, sender, product):
        """The peer has accepted the shell as it announces itself: the participant, both endpoints, and no complaint."""
        with open(self.router.trace_file, encoding="latin-1") as file:
            trace = [line for line in file if ": config: " not in line]
        prefix = ":".join(format(int.from_bytes(sender[at:at + 4], "big"), "x") for at in (0, 4))
        topic, kind = self.router.topic, self.router.type
        for pattern in (
                rf'SPDP ST0 {prefix}:\S+ .* NEW .*"zul.service.version":"5.1.0".*entity_name="ZUL {product} Service: Shell"',
                rf"SEDP ST0 {prefix}:\S+ reliable volatile writer .*{topic}request/{kind}Request .* NEW ",
                rf"SEDP ST0 {prefix}:\S+ reliable volatile reader .*{topic}response/{kind}Response .* NEW "):
            self.assertRegex("".join(trace), pattern)
        self.assertEqual([], [line for line in trace if "malformed" in line or " dq.builtin: " in line and "invalid" in line])

    def test_exchange(self):
        for domain, product in ((50, "Routing"), (51, "Federation")):
            with (self.subTest(product), tempfile.TemporaryDirectory() as self.folder,
                  CycloneRouter(domain, product) as self.router, PeerShell(domain, product) as shell):
                sender, self.identity = shell.meet(self.router, f'"{ROUTER}"')
                self.run_commands(shell)
                self.assertEqual((0, "Stopping...\n"), shell.exit())
                self.assertEqual("", shell.log)
                self.check_discovery(sender, product)
                self.assertEqual("", self.router.log)


if __name__ == "__main__":
    unittest.main()

"""Configuration as XML through both programs: every form of a URL, every outcome line, and what the router makes of it."""

import os
import pathlib
import tempfile
import unittest

from processes import SessionTest

EXAMPLES = pathlib.Path(os.environ.get("ZUL_SOURCE", ".")) / "examples"
ROUTE = ('<domain_route name="Second"><participant_1><domain_id>3</domain_id></participant_1>'
         '<participant_2><domain_id>4</domain_id></participant_2></domain_route>')


class Configuration(SessionTest):
    domain = 26

    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())

    def file(self, text, name="file.xml"):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as out:
            out.write(text)
        return path

    def test_every_command_in_both_variants(self):
        for program, name, options in (("zulrssh", "routing_service_1", []),
                                       ("zulfssh", "federation_service_1", ["--federation"])):
            router = self.router(name, "--save-dir", self.folder, *options)
            shell = self.shell("-timeout", "20", router=router, program=program)
            ok = r"\AResult: .+\n\Z"
            self.assertRegex(shell.run(f"update {name} . domain_route.participant_2.domain_id=5"), ok)
            # A typed assignment runs to the end of its line, line feed included.
            self.assertRegex(shell.run(f"get {name}"), r"<domain_id>5\s*</domain_id>")
            self.assertRegex(shell.run(f"create {name} domain_route {self.file(ROUTE)} local"), ok)
            self.assertIn('<domain_route name="Second">', shell.run(f"get {name}"))
            session = 'str://"<session name="S1"></session>"'
            self.assertRegex(shell.run(f"create {name} session Second {session}"), ok)
            self.assertRegex(shell.run(f"add_peer {name} Second p2 udpv4://127.0.0.1,,other"), ok)
            for command in ("disable", "enable", "pause", "resume", "delete"):
                self.assertRegex(shell.run(f"{command} {name} Second::S1"), ok, command)
            self.assertRegex(shell.run(f"enable {name} Second::S1"), r"\AError: .*Second::S1.*\n\Z")
            self.assertRegex(shell.run(f"disable {name} Second"), ok)
            saved = shell.run(f"save {name}")
            path = next(word for word in saved.split() if word.endswith(".xml"))
            self.assertIn('name="Second"', pathlib.Path(self.folder, os.path.basename(path)).read_text("utf-8"))
            # What was saved is loaded again: by the router itself, and sent in pieces of a large file.
            large = self.file(pathlib.Path(self.folder, os.path.basename(path)).read_text("utf-8")
                              + "<!-- " + "\u00e9 comment " * 9000 + "-->\n", "large.xml")
            self.assertRegex(shell.run(f"unload {name}"), ok)
            self.assertRegex(shell.run(f"get {name}"), r"\AError: .+\n\Z")
            for form in (f"{large} remote", f"file://{large}", f"file://{large} local"):
                self.assertRegex(shell.run(f"load {name} BuiltinDefault {form}"), ok, form)
                self.assertIn('name="Second"', shell.run(f"get {name}"))
            # A router started with what was saved is in the state that the first was in.
            shell.connect(self.router("again", "--config", os.path.join(self.folder, name + ".xml"), *options))
            self.assertRegex(shell.run("disable again Second"), "is disabled already")
            self.assertIn("<element>udpv4://127.0.0.1</element>", shell.run("get again"))

    def test_files_that_cannot_be_read_change_nothing(self):
        shell = self.shell("-timeout", "1", router=self.router())
        before = shell.run("get r1")
        fifo = os.path.join(self.folder, "fifo")
        os.mkfifo(fifo)
        for command, expected in (
            (f"load r1 c {fifo} local", r"\AError reading local file\nNo response received\n\Z"),
            ("load nobody c f", r"\AError sending request\nNo response received\n\Z"),
            ("update r1 x.xml", r"\AError: .*x\.xml.*\n\Z"),
        ):
            self.assertRegex(shell.run(command), expected)
        self.assertEqual(shell.run("get r1"), before)

    def test_dupdate_pairs_its_outcome_as_it_does(self):
        router = self.router()
        shell = self.shell("-timeout", "20", router=router)
        assignment = "domain_route.participant_1.domain_id=9"
        # Its success reads like a file that could not be opened; nothing of the update is lost.
        self.assertRegex(shell.run(f"dupdate r1 DefaultDomainRoute {assignment}"),
                         r"(?s)\ACan't open local file domain_route\..*\nNo response received\n\Z")
        self.assertRegex(shell.run("get r1"), r"<domain_id>9\s*</domain_id>")
        for line in (r"DISABLE[^\n]*invocation (\d+)", r"UPDATE[^\n]*invocation (\d+)", r"ENABLE[^\n]*invocation (\d+)"):
            router.expect(line)

    def test_faulty_documents_change_nothing(self):
        shell = self.shell("-timeout", "20", router=self.router())
        before = shell.run("get r1")
        documents = [
            ("<dds><routing_service name='c'>", r"\AError: "),
            ("<dds>\n<routing_service/>\n</dds>", r"\AError: .*line 2"),
            ("", r"\AError: "),
            ('<!DOCTYPE dds [<!ENTITY a "b">]><dds>&a;</dds>', r"\AError: "),
        ]
        for text, expected in documents:
            self.assertRegex(shell.run(f"load r1 c {self.file(text)} local"), expected, text)
            self.assertEqual(shell.run("get r1"), before, text)
        for example in sorted(EXAMPLES.glob("*.xml")):
            text = example.read_text("utf-8")
            if "<routing_service name=" in text:
                name = text.split('<routing_service name="')[1].split('"')[0]
                self.assertRegex(shell.run(f"load r1 {name} {example} local"), r"\AResult: ", example.name)

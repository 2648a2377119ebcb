"""Configuration as XML through both programs: every form of a URL, and what the router makes of it."""

import os
import pathlib
import tempfile

from processes import SessionTest

ROUTE = ('<domain_route name="Second"><participant_1><domain_id>3</domain_id></participant_1>'
         '<participant_2><domain_id>4</domain_id></participant_2></domain_route>')


class Configuration(SessionTest):
    domain = 26

    def test_every_command_in_both_variants(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        for program, name, options in (("zulrssh", "routing_service_1", []),
                                       ("zulfssh", "federation_service_1", ["--federation"])):
            router = self.router(name, "--save-dir", folder, *options)
            shell = self.shell("-timeout", "20", router=router, program=program)
            ok = r"\AResult: .+\n\Z"
            builtin = pathlib.Path(os.environ["ZUL_SOURCE"], f"resource/xml/ZUL_{name[:-2].upper()}.xml").read_text("utf-8")
            self.assertEqual(shell.run(f"get {name}"), f"Result: {builtin}\n")
            self.assertRegex(shell.run(f"update {name} . domain_route.participant_2.domain_id=5"), ok)
            # A typed assignment runs to the end of its line, line feed included.
            self.assertRegex(shell.run(f"get {name}"), r"<domain_id>5\s*</domain_id>")
            self.assertRegex(shell.run(f"create {name} domain_route {self.file('second.xml', ROUTE)} local"), ok)
            self.assertIn('<domain_route name="Second">', shell.run(f"get {name}"))
            session = 'str://"<session name="S1"></session>"'
            self.assertRegex(shell.run(f"create {name} session Second {session}"), ok)
            self.assertRegex(shell.run(f"add_peer {name} Second p2 udpv4://127.0.0.1,,other"), ok)
            for command in ("disable", "enable", "pause", "resume", "delete"):
                self.assertRegex(shell.run(f"{command} {name} Second::S1"), ok, command)
            self.assertRegex(shell.run(f"enable {name} Second::S1"), r"\AError: .*Second::S1.*\n\Z")
            self.assertRegex(shell.run(f"disable {name} Second"), ok)
            saved = pathlib.Path(folder, name + ".xml")
            self.assertIn(saved.name, shell.run(f"save {name}"))
            document = saved.read_text("utf-8")
            self.assertIn('name="Second"', document)
            # What was saved is loaded again: by the router itself, and sent in pieces of a large file.
            large = self.file("large.xml", document + "<!-- " + "\u00e9 comment " * 9000 + "-->\n")
            self.assertRegex(shell.run(f"unload {name}"), ok)
            self.assertRegex(shell.run(f"get {name}"), r"\AError: .+\n\Z")
            for form in (f"{large} remote", f"file://{large}", f"file://{large} local"):
                self.assertRegex(shell.run(f"load {name} BuiltinDefault {form}"), ok, form)
                self.assertIn('name="Second"', shell.run(f"get {name}"))
            # A router started with what was saved is in the state that the first was in.
            shell.connect(self.router("again", "--config", saved, *options))
            self.assertRegex(shell.run("disable again Second"), "is disabled already")
            self.assertIn("<element>udpv4://127.0.0.1</element>", shell.run("get again"))

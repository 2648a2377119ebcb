"""zulctl check as it is run: what it prints of several files, in text and JSON, and its exit statuses. Of the documents that
are shipped, and of those that are broken, xmllint says the same from outside."""

import os
import re
import socket
import subprocess

from control import SOURCE, ControlTest

BROKEN = SOURCE / "tests/product/broken_configurations"
MARK = "<!-- reported: the next line -->"


def definition_of(variant):
    return SOURCE / f"resource/dtd/{variant}_service.dtd"


def xmllint(variant, *files):
    """Validates from outside; returns exit status and what is said."""
    done = subprocess.run(["xmllint", "--noout", "--nonet", "--dtdvalid", definition_of(variant), *files],
                          capture_output=True, timeout=60, check=False)
    return done.returncode, done.stderr.decode("utf-8", "replace")


class Check(ControlTest):
    domain = 66

    def test_shipped_documents_are_refused(self):
        for variant, options in (("routing", []), ("federation", ["--federation"])):
            files = [*(SOURCE / "examples").glob(f"{variant}_*.xml"), SOURCE / f"resource/xml/ZUL_{variant.upper()}_SERVICE.xml"]
            examples = re.findall(r"^<dds>$.*?^</dds>$", definition_of(variant).read_text("ascii"), re.S | re.M)
            files += [self.file("example.xml", example) for example in examples]
            self.assertGreater(len(files), 4)
            self.assertEqual(self.run_text(*options, "check", *files), (0, "", ""))
            self.assertEqual(xmllint(variant, *files), (0, ""))

    def test_a_broken_document_passes_or_is_told_of_where_it_is_right(self):
        paths = sorted(BROKEN.glob("*.xml"))
        self.assertGreater(len(paths), 11)
        for path in paths:
            variant = path.name.split("_")[0]
            options = ["--federation"] if variant == "federation" else []
            line = next(number for number, text in enumerate(path.read_text("utf-8").splitlines(), 2) if MARK in text)
            status, rows = self.run_json(*options, "check", path)
            lines = {row["line"] for row in rows}
            self.assertEqual((status, len(lines)), (1, 1), rows)
            self.assertIn(lines.pop() - line, range(6), rows)  # a child that has no place is told at its own line
            status, report = xmllint(variant, path)
            first = re.search(r":(\d+): element \S+: validity error", report)
            self.assertEqual((status, first and int(first[1])), (3, line), report)

    def test_files_lines_and_control_characters_are_mixed_up(self):
        types = self.file("types.xml", "<dds><types><struct name='T'><member name='m' type='byte'/></struct></types></dds>")
        folder = os.path.dirname(types)
        good = self.file(f"{folder}/good.xml",
                         "<dds><types><include file='types.xml'/><typedef name='U' type='nonBasic' nonBasicTypeName='T'/></types></dds>")
        bad = self.file("b\x1b[2J.xml", "<dds>\n<\u009b/><qos_library name='\u009b'/>\n<types><include file='none.xml'/></types></dds>")
        missing = f"{folder}/none"
        shown = bad.replace("\x1b", "\\x1b")
        status, out, error = self.run_text("check", good, bad, missing, folder, self.file(f"{folder}/empty.xml", ""))
        self.assertEqual(status, 2)
        self.assertEqual(error, f"zulctl: cannot open {missing}: No such file or directory\nzulctl: cannot read {folder}: Is a directory\n")
        lines = out.splitlines()
        self.assertEqual([line[:len(shown) + 3] for line in lines[:-1]], [f"{shown}:2:"])
        self.assertEqual(lines[-1], f"{folder}/empty.xml:1: the document is empty")
        self.assertNotIn("\u009b", out)

    def test_json_has_all_findings_in_order(self):
        bad = self.file("b\x1b.xml", "<dds>\n<qos_library name='\u009b'/>\n<types><include file='none.xml'/><struct name='\n'/>"
                                  "<typedef name='U' type='nonBasic' nonBasicTypeName='MayBeInThere'/></types></dds>")
        status, rows = self.run_json("check", bad)
        self.assertEqual((status, [(row["file"], row["line"]) for row in rows]), (1, [(bad, 2), (bad, 3), (bad, 4)]))
        self.assertIn("none.xml", rows[1]["message"])

    def test_standard_input_and_usage(self):
        for text, expected in ((b"<dds/>", (0, "")), (b"<dds>", (1, "-:1: "))):
            ends = socket.socketpair()  # which has no name to be opened by
            ends[0].sendall(text)
            ends[0].close()
            with ends[1] as end:
                status, out, _ = self.run_text("check", "-", stdin=end)
            self.assertEqual((status, out[:5]), expected)
        self.assertEqual(self.run_text("check", *[self.file("good.xml", "<dds/>")] * 1001), (0, "", ""))
        self.assertEqual(self.run_text("check")[0], 2)
        self.assertEqual(self.run_text("check", "--all")[0], 2)

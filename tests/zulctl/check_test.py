"""zulctl check as it is run: what it prints of several files, in text and JSON, and its exit statuses."""

import os
import pathlib
import socket
import subprocess
import tempfile
import unittest

from control import ControlTest
from processes import BIN

SOURCE = pathlib.Path(os.environ["ZUL_SOURCE"])
BROKEN = SOURCE / "tests/product/broken_configurations"
MARK = "<!-- reported: the next line -->"


class Check(ControlTest):
    domain = 66

    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def file(self, name, text):
        (self.folder / name).write_text(text, "utf-8")
        return self.folder / name

    def test_shipped_documents_are_refused(self):
        for variant, options in (("routing", []), ("federation", ["--federation"])):
            files = [*(SOURCE / "examples").glob(f"{variant}_*.xml"), SOURCE / f"resource/xml/ZUL_{variant.upper()}_SERVICE.xml"]
            self.assertGreater(len(files), 3)
            self.assertEqual(self.run_text(*options, "check", *files), (0, "", ""))

    def test_a_broken_document_passes_or_is_told_of_where_it_is_right(self):
        for path in sorted(BROKEN.glob("*.xml")):
            options = ["--federation"] if path.name.startswith("federation") else []
            line = next(number for number, text in enumerate(path.read_text("utf-8").splitlines(), 2) if MARK in text)
            status, rows = self.run_json(*options, "check", path)
            lines = {row["line"] for row in rows}
            self.assertEqual((status, len(lines)), (1, 1), rows)
            self.assertIn(lines.pop() - line, range(6), rows)  # a child that has no place is told at its own line

    def test_files_lines_and_control_characters_are_mixed_up(self):
        self.file("types.xml", "<dds><types><struct name='T'><member name='m' type='byte'/></struct></types></dds>")
        good = self.file("good.xml", "<dds><types><include file='types.xml'/><typedef name='U' type='nonBasic' nonBasicTypeName='T'/></types></dds>")
        bad = self.file("b\x1b[2J.xml", "<dds>\n<\u009b/><qos_library name='\u009b'/>\n<types><include file='none.xml'/></types></dds>")
        missing = self.folder / "none"
        shown = str(bad).replace("\x1b", "\\x1b")
        status, out, error = self.run_text("check", good, bad, missing, self.folder, self.file("empty.xml", ""))
        self.assertEqual(status, 2)
        self.assertEqual(error, f"zulctl: cannot open {missing}: No such file or directory\nzulctl: cannot read {self.folder}: Is a directory\n")
        lines = out.splitlines()
        self.assertEqual([line[:len(shown) + 3] for line in lines[:-1]], [f"{shown}:2:"])
        self.assertEqual(lines[-1], f"{self.folder}/empty.xml:1: the document is empty")
        self.assertNotIn("\u009b", out)

    def test_json_has_all_findings_in_order(self):
        bad = self.file("b\x1b.xml", "<dds>\n<qos_library name='\u009b'/>\n<types><include file='none.xml'/><struct name='\n'/>"
                                  "<typedef name='U' type='nonBasic' nonBasicTypeName='MayBeInThere'/></types></dds>")
        status, rows = self.run_json("check", bad)
        self.assertEqual((status, [(row["file"], row["line"]) for row in rows]), (1, [(str(bad), 2), (str(bad), 3), (str(bad), 4)]))
        self.assertIn("none.xml", rows[1]["message"])

    def test_standard_input_and_usage(self):
        command = [os.path.join(BIN, "zulctl"), "check", "-"]
        for text, expected in ((b"<dds/>", (0, b"")), (b"<dds>", (1, b"-:1: "))):
            ends = socket.socketpair()  # which has no name to be opened by
            ends[0].sendall(text)
            ends[0].close()
            with ends[1] as end:
                done = subprocess.run(command, stdin=end, capture_output=True, check=False, timeout=60)
            self.assertEqual((done.returncode, done.stdout[:5]), expected, done)
        self.assertEqual(self.run_text("check", *[self.file("good.xml", "<dds/>")] * 1001), (0, "", ""))
        self.assertEqual(self.run_text("check")[0], 2)
        self.assertEqual(self.run_text("check", "--all")[0], 2)


if __name__ == "__main__":
    unittest.main()

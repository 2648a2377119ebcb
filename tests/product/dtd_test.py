"""The document type definitions of the configuration, checked from outside with xmllint.

What an operator is promised: every shipped configuration follows the definition of its variant,
a document with one fault does not and the report names the right line. A file's name begins with
the variant it belongs to.
"""

import pathlib
import re
import shutil
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
VARIANTS = ("routing", "federation")
# Both programs embed their text in chunks of this many characters, and the product table counts
# them: size of the text in characters, number of chunks.
CHUNK = 1024
SIZES = {"routing": (57464, 57), "federation": (53868, 53)}

BROKEN = sorted((ROOT / "tests/product/broken_configurations").glob("*.xml"))
LINE_MARK = "<!-- reported: the next line -->"


def dtd_path(variant):
    return ROOT / "resource/dtd" / f"{variant}_service.dtd"


def dtd_text(variant):
    """The text as it is on disk: no newline translation, since every character counts."""
    return dtd_path(variant).read_bytes().decode("ascii")


def validate(variant, document):
    """Validates the bytes `document`; returns xmllint's exit status and what it reports."""
    command = ["xmllint", "--noout", "--nonet", "--dtdvalid", str(dtd_path(variant)), "-"]
    done = subprocess.run(command, input=document, capture_output=True, timeout=60, check=False)
    return done.returncode, done.stderr.decode("utf-8", "replace")


def shipped_documents():
    """(variant, label, bytes) of everything that has to be accepted."""
    for path in sorted((ROOT / "examples").glob("*.xml")):
        yield path.name.split("_")[0], path.name, path.read_bytes()
    for variant in VARIANTS:
        path = ROOT / "resource/xml" / f"ZUL_{variant.upper()}_SERVICE.xml"
        yield variant, path.name, path.read_bytes()
        for example in re.findall(r"^<dds>$.*?^</dds>$", dtd_text(variant), re.S | re.M):
            yield variant, f"example inside {variant}_service.dtd", example.encode()


class Declarations:
    """Element and attribute-list declarations of a definition, parameter entities expanded."""

    def __init__(self, text):
        text = re.sub(r"<!--.*?-->", "", text, flags=re.S)
        self.entities = {}
        for name, value in re.findall(r'<!ENTITY\s+%\s+(\S+)\s+"([^"]*)"', text):
            self.entities[name] = self.expand(value)
        text = self.expand(re.sub(r"<!ENTITY[^>]*>", "", text))
        declared = re.findall(r"<!ELEMENT\s+(\S+)\s+([^>]*)>", text)
        self.names = [name for name, _ in declared]
        self.children = {name: self.names_in(model) for name, model in declared}
        self.with_attributes = re.findall(r"<!ATTLIST\s+(\S+)", text)

    def expand(self, text):
        return re.sub(r"%([\w.-]+);", lambda found: self.entities[found[1]], text)

    @staticmethod
    def names_in(model):
        return set(re.findall(r"[#\w.-]+", model)) - {"#PCDATA", "EMPTY"}

    def reachable(self, root):
        seen, waiting = set(), [root]
        while waiting:
            name = waiting.pop()
            if name not in seen:
                seen.add(name)
                waiting.extend(self.children.get(name, ()))
        return seen


class DtdTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if shutil.which("xmllint") is None:
            raise RuntimeError("xmllint is missing: install the package libxml2-utils")

    def test_sizes_are_those_of_the_product_table(self):
        for variant, (characters, chunks) in SIZES.items():
            with self.subTest(variant):
                text = dtd_text(variant)
                self.assertEqual(len(text), characters)
                self.assertEqual(-(-len(text) // CHUNK), chunks)
                self.assertNotIn("\0", text)
                self.assertNotIn("\r", text)

    def test_every_element_is_declared_once_and_can_occur(self):
        for variant in VARIANTS:
            with self.subTest(variant):
                found = Declarations(dtd_text(variant))
                self.assertEqual(len(found.names), len(set(found.names)), "declared twice")
                self.assertEqual(found.reachable("dds"), set(found.names))
                self.assertEqual(set(found.with_attributes) - set(found.names), set())

    def test_values_types_and_qos_are_the_same_in_both_variants(self):
        common = [
            re.search(r"^     2\. VALUES$.*?(?=^     6\. )", dtd_text(variant), re.S | re.M)
            for variant in VARIANTS
        ]
        for found in common:
            self.assertIsNotNone(found)
            self.assertIn("<!ELEMENT send_window", found[0])
        self.assertEqual(common[0][0], common[1][0])

    def test_shipped_documents_are_accepted(self):
        count = 0
        for variant, label, document in shipped_documents():
            with self.subTest(label):
                status, report = validate(variant, document)
                self.assertEqual((status, report), (0, ""))
            count += 1
        self.assertGreaterEqual(count, 12)

    def test_broken_documents_are_refused_with_their_line(self):
        self.assertGreaterEqual(len(BROKEN), 12)
        for path in BROKEN:
            with self.subTest(path.name):
                document = path.read_bytes()
                lines = document.decode("utf-8").splitlines()
                marks = [number for number, line in enumerate(lines, 1) if LINE_MARK in line]
                self.assertEqual(len(marks), 1)
                status, report = validate(path.name.split("_")[0], document)
                self.assertEqual(status, 3, "well-formed, but not valid: " + report)
                first = re.search(r"^-:(\d+): element \S+: validity error", report, re.M)
                self.assertIsNotNone(first, report)
                self.assertEqual(int(first[1]), marks[0] + 1, report)


if __name__ == "__main__":
    unittest.main()

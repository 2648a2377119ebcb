"""The document type definitions of the configuration: what they declare, and that the table of checks has it."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
VARIANTS = ("routing", "federation")


def dtd_text(variant):
    return (ROOT / f"resource/dtd/{variant}_service.dtd").read_text("ascii")


def declarations(text):
    """Names of declared elements, the names in content models, names with attributes; entities expanded."""
    text = re.sub(r"<!--.*?-->", "", text, flags=re.S)
    entities = re.findall(r'<!ENTITY\s+%\s+(\S+)\s+"([^"]*)"', text)
    text = re.sub(r"<!ENTITY[^>]*>", "", text)
    for name, value in reversed(entities):  # one may use those before it
        text = text.replace(f"%{name};", value)
    declared = re.findall(r"<!ELEMENT\s+(\S+)\s+([^>]*)>", text)
    used = {name for _, model in declared for name in re.findall(r"[#\w.-]+", model)} - {"#PCDATA", "EMPTY"}
    return [name for name, _ in declared], used, re.findall(r"<!ATTLIST\s+(\S+)", text)


class DtdTest(unittest.TestCase):
    def test_every_element_is_declared_once_and_used(self):
        for variant in VARIANTS:
            names, used, with_attributes = declarations(dtd_text(variant))
            self.assertEqual(sorted(names), sorted(used | {"dds"}), variant)
            self.assertLessEqual(set(with_attributes), set(names), variant)

    def test_values_types_and_qos_are_the_same_in_both_variants(self):
        common = [re.search(r"^     2\. VALUES$.*?<!ELEMENT send_window.*?(?=^     6\. )", dtd_text(variant), re.S | re.M)
                  for variant in VARIANTS]
        self.assertEqual(*[found and found[0] for found in common])
        self.assertIsNotNone(common[0])

    def test_every_text_has_a_form_in_the_table_of_checks_and_every_row_its_place(self):
        table = (ROOT / "plan/check/fields.cpp").read_text("utf-8")
        places = re.findall(r'\.place = "([^"@]+)(?:@(\w+))?"', table)
        self.assertGreater(len(places), 80)
        texts = "\n".join(map(dtd_text, VARIANTS))
        elements = set(re.findall(r"<!ELEMENT\s+(\S+)", texts))
        for place, attribute in places:
            tag = place.rsplit("/", 1)[-1]
            self.assertLessEqual(set(place.split("/")), elements)
            if attribute:
                self.assertRegex(texts, rf"<!ATTLIST {tag}\s[^>]*(%(qos|entity)_attributes;|\b{attribute}\s)")
        free = {"documentation", "expression", "multicast_address", "parameter", "role", "save_path"}
        free |= {f"{word}topic_name" for word in ("", "allow_", "deny_")} | {f"{word}stream_name" for word in ("", "allow_", "deny_")}
        free |= {"allow_type_name", "deny_type_name", "registered_type_name"}
        with_text = set(re.findall(r"<!ELEMENT\s+(\S+)\s+\(#PCDATA", texts))
        self.assertEqual(with_text - {place.rsplit("/", 1)[-1] for place, attribute in places if not attribute}, free)
        for words in re.findall(r'\.words = "([^"]+)"', table):
            self.assertEqual([word for word in words.split() if not re.search(rf"\b{word}\b", texts)], [])

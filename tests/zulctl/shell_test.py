"""zulctl tree in its three forms."""

import os
import tempfile
import unittest

from control import ControlTest

NESTED = """<domain_route name="d"><participant_1><domain_id>5</domain_id></participant_1><participant_2><domain_id>6</domain_id>
</participant_2><session name="s1" enabled="false"><auto_topic_route name="t"><input participant="1"/><output/></auto_topic_route>
</session><session name="s2"/></domain_route>"""


class Tree(ControlTest):
    domain = 72

    def test_entities_with_their_state_as_text_graph_and_rows(self):
        self.router("r\"1\\\n\x1b[2J", "--config", self.document(NESTED))
        self.router("empty")
        self.assertEqual(self.run_text("unload", "empty")[0], 0)
        status, out, log = self.run_text("--discovery", "1", "tree", "--all")
        self.assertEqual((status, out, log), (1, r"""r"1\\x0a\x1b[2J: routing_service top
`-- domain_route d [enabled]
    |-- session s1 [disabled]
    |   `-- auto_topic_route t [enabled]
    `-- session s2 [enabled]
""", "zulctl: empty: error: no configuration is loaded; load one first\n"))
        status, rows = self.run_json("--discovery", "1", "tree", "*")
        self.assertEqual((status, [(row["path"], row["state"]) for row in rows if "path" in row]), (1, [
            ("", "unknown"), ("d", "enabled"), ("d::s1", "disabled"), ("d::s1::t", "enabled"), ("d::s2", "enabled")]))
        self.assertEqual([row["status"] for row in rows if "status" in row], ["error"])
        status, out, _ = self.run_text("--discovery", "1", "tree", "r*", "--dot")
        string = r'"(?:[^"\\\n]|\\["\\])*"'
        attribute = rf"(?:\w+=(?:\w+|{string}))"
        statement = rf"(?:{attribute};|\w+(?: \[{attribute}(?:, {attribute})*\])?;|\w+ -> \w+;|(?:di|sub)graph \w+ {{|}})"
        self.assertRegex(out, rf"\A(?:\s*{statement})+\s*\Z")
        self.assertEqual((status, out.count("{"), out.count("->"), out.count("dashed")), (0, out.count("}"), 4, 1))
        self.assertIn(r'label="r\"1\\\\x0a\\x1b[2J"', out)
        self.assertEqual(self.run_text("--json", "tree", "x", "--dot")[0], 2)

    def document(self, inside):
        path = os.path.join(self.enterContext(tempfile.TemporaryDirectory()), "document.xml")
        with open(path, "w", encoding="utf-8") as file:
            file.write(f'<dds><routing_service name="top">{inside}</routing_service></dds>')
        return path


if __name__ == "__main__":
    unittest.main()

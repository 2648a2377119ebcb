"""What documents point at exists: links, paths, and the functions along the two ways in the architecture."""

import os
import re
import subprocess
import unittest

SOURCE = os.environ["ZUL_SOURCE"]
DOCUMENTS = ["README.md", "CONTRIBUTING.md", "SECURITY.md", "CHANGELOG.md",
             "docs/architecture.md", "docs/wire.md", "docs/oddities.md"]
FOLDERS = "admin_types|benchmarks|cmake|docs|examples|fuzz|middleware|packaging|practice_router|product|" \
          "remote_config|resource|shell|tests|utils"


def read(path):
    with open(os.path.join(SOURCE, path), encoding="utf-8") as file:
        return file.read()


class Documents(unittest.TestCase):
    def test_a_link_or_path_to_nothing(self):
        for document in DOCUMENTS:
            text = read(document)
            links = [os.path.join(os.path.dirname(document), link)
                     for link in re.findall(r"\]\(([^)#:]+)\)", text)]
            paths = re.findall(rf"`((?:{FOLDERS})/[\w./-]*)`", text)
            self.assertEqual([p for p in links + paths if not os.path.exists(os.path.join(SOURCE, p))], [], document)

    def test_a_function_that_moved(self):
        rows = re.findall(r"^\|(?: \w+ \|)? `([\w/.]+)` \| `(\w+)` \|", read("docs/architecture.md"), re.MULTILINE)
        self.assertGreater(len(rows), 20)
        self.assertEqual([row for row in rows if not re.search(rf"\b{row[1]}\b", read(row[0]))], [])

    def test_an_oddity_without_its_number(self):
        known = re.findall(r"^\| (\d+) \|", read("docs/oddities.md"), re.MULTILINE)
        self.assertEqual(sorted(known, key=int), [str(i + 1) for i in range(len(known))])
        folders = [os.path.join(SOURCE, folder) for folder in FOLDERS.split("|")]
        used = subprocess.run(["grep", "-rhoE", "--include=*.cpp", "--include=*.h", r"// oddity [0-9]+", *folders],
                              capture_output=True, text=True, check=False).stdout.split()[2::3]
        self.assertLessEqual(set(used), set(known))


if __name__ == "__main__":
    unittest.main()

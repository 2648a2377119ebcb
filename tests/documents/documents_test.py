"""What documents say is there: links, paths, the functions along the two ways in the architecture, and in the manual and the
completion the commands, entities and options of the shell's tables."""

import os
import re
import subprocess
import unittest

SOURCE = os.environ["ZUL_SOURCE"]
DOCUMENTS = ["README.md", "CONTRIBUTING.md", "SECURITY.md", "CHANGELOG.md",
             "docs/architecture.md", "docs/wire.md", "docs/oddities.md", "docs/tutorial.md"]
FOLDERS = "|".join(entry.name for entry in os.scandir(SOURCE) if entry.is_dir() and not entry.name.startswith((".", "build")))
PLACEHOLDERS = {"<target_router>": "ROUTER", "<entity_name>": "ENTITY", "<cfg_name>": "CONFIGURATION", "<xml_url>": "URL",
                "<parent_entity_name>": "PARENT", "<domain_route_name>": "DOMAIN_ROUTE", "<peer_list>": "PEER"}


def read(path):
    with open(os.path.join(SOURCE, path), encoding="utf-8") as file:
        return file.read()


def words(text):
    return frozenset(re.findall(r"\w+", text))


def commands():
    """The table of the dispatcher: of each command its names, and its syntax without the command, or None."""
    source = read("shell/dispatcher.cpp")
    constants = dict(re.findall(r'(\w+_SYNTAX) = ("[^"]*")', source))
    for names, row in re.findall(r"\{\.names = \{(.*?)\}(.*?)\.run = ", source, re.DOTALL):
        syntax = re.search(r"\.syntax = (.*)", row, re.DOTALL)
        literals = syntax and constants.get(syntax[1].strip(", \n"), syntax[1])
        yield words(names), syntax and "".join(re.findall(r'"([^"]*)"', literals)).split(" ", 1)[1]


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
        marked = subprocess.run(["grep", "-rhoE", "--include=*.cpp", "--include=*.h", "--include=*.inc", "--exclude-dir=tests",
                                 r"//.*oddity [0-9]+", *FOLDERS.split("|")], cwd=SOURCE, capture_output=True, text=True, check=False).stdout
        self.assertEqual(set(re.findall(r"oddity (\d+)", marked)), set(known))

    def test_a_command_or_word_that_the_manual_lacks_or_has_too_many(self):
        chapter = re.search(r"\.SH COMMANDS(.*)\.SS URLs", read("packaging/man/zulrssh.1"), re.DOTALL)[1]
        items = [words(re.sub(r"\\f.|\.[A-Z]+\s", " ", item[0])) - {"SECONDS"}
                 for item in re.findall(r"(\.TP\n\.[^\n]*(\n\.TQ\n\.[^\n]*)*)", chapter)]
        expected, plain, keywords = set(), set(), set()
        for names, syntax in commands():
            for placeholder, word in PLACEHOLDERS.items():
                syntax = syntax and syntax.replace(placeholder, word)
            if syntax:
                expected.add(names | words(syntax))
                keywords |= words(syntax)
            else:
                plain |= names
        self.assertEqual({item for item in items if "ROUTER" in item}, expected)
        self.assertEqual(set().union(*(item for item in items if "ROUTER" not in item)), plain)
        self.assertGreater(len(expected) + len(plain), 15)
        for tag, row in re.findall(r'\{\.tag = "(\w+)",(.*)\}', read("product/vocabulary.h")):
            self.assertIn(f" {tag}.", read("packaging/man/zulrssh.1"))
            self.assertEqual(tag in keywords, "isKeyword = true" in row, tag)

    def test_an_option_that_the_manual_or_the_completion_lacks(self):
        options = re.findall(r'\{"(\w+)", ROUTER_SHELL_PARAMETER_(\w+)', read("shell/parameter_manager.cpp"))
        self.assertEqual([name for name, _ in options if f"\\-{name}" not in read("packaging/man/zulrssh.1")], [])
        completion = read("packaging/bash-completion/zul-shells")
        self.assertIn('_zul_shells_options "$current" ' + " ".join(f"-{name}" for name, _ in options) + " ;;", completion)
        self.assertIn("for option in " + " ".join(f"-{name}" for name, kind in options if kind != "NONE") + ";", completion)

"""What the tutorial says a command prints is what it prints."""

import os
import re
import unittest

from control import SOURCE
from processes import BIN, Program


def steps(text):
    """Of each line to type: the line, what is typed at its prompt, and what is said to be printed."""
    for block in re.findall(r"(?:^    .*\n)+", text, re.MULTILINE):
        for step in re.split(r"^    \$ ", block, flags=re.MULTILINE)[1:]:
            command, *rest = re.sub(r"^    ", "", step, flags=re.MULTILINE).splitlines()
            prompt = "zulctl> "
            yield (command, [line[len(prompt):] for line in rest if line.startswith(prompt)],
                   [line for line in rest if not line.startswith((prompt, "help lists "))])


def essence(lines):
    """Without what differs from run to run, the order of answers included."""
    return sorted(re.sub(r'[0-9a-f]{8}(\.[0-9a-f]{8}){2}|\d+(?= ms)|(?<="ms":)\d+', "N", line).rstrip() for line in lines)


class Tutorial(unittest.TestCase):
    def test_its_commands_print_what_it_says(self):
        known = list(steps((SOURCE / "docs/tutorial.md").read_text("utf-8")))
        self.assertGreater(len(known), 20)
        with Program("/bin/bash") as bash:
            bash.send(f"exec 2>&1; cd '{SOURCE}'\n")
            try:
                for command, typed, printed in known:
                    command = command.replace("$PWD/build/bin", os.path.abspath(BIN))
                    if typed:
                        command += " <<'END'\n" + "\n".join(typed) + "\nEND"
                    bash.send(f"(exit $status)\n{command}\nstatus=$?; echo --end\n")
                    self.assertEqual(essence(bash.expect(r"--end\n", 60)[0].splitlines()), essence(printed), command)
            finally:
                bash.send("kill -CONT $(jobs -p); kill $(jobs -p); echo --over\n")
                bash.expect("--over")

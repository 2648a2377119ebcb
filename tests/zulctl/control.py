"""Runs zulctl to its end, and holds each line of its JSON against the schema in docs/."""

import json
import os
import re
import pathlib
import subprocess

from processes import BIN, SessionTest

SOURCE = pathlib.Path(os.environ["ZUL_SOURCE"])
SCHEMA = json.loads((SOURCE / "docs/zulctl.schema.json").read_text("utf-8"))
TYPES = {"string": str, "integer": int, "boolean": bool, "array": list, "object": dict}


def profile(more):
    """The profile that keeps DDS on the loopback interface, and more."""
    return (SOURCE / "tests/support/loopback_profile.xml").read_text("utf-8").replace("</rtps>", more + "</rtps>")


IN_PARTITION = profile("").replace("</profiles>", "".join(
    f'<{kind} profile_name="{kind}" is_default_profile="true"><qos><partition><names><name>P</name></names></partition></qos></{kind}>'
    for kind in ("publisher", "subscriber")) + "</profiles>")
SHORT_LEASE = profile("<builtin><discovery_config><leaseDuration><sec>2</sec></leaseDuration>"
                      "<leaseAnnouncement><sec>0</sec><nanosec>500000000</nanosec></leaseAnnouncement></discovery_config></builtin>")


def faults(value, schema):
    """What of a value is not as the schema has it; knows the words that the schema of zulctl uses."""
    unknown = set(schema) - {"$schema", "title", "description", "$defs", "$ref", "oneOf", "enum", "const", "type", "pattern",
                             "minimum", "maximum", "items", "required", "properties", "additionalProperties"}
    assert not unknown, unknown
    if "$ref" in schema:
        return faults(value, SCHEMA["$defs"][schema["$ref"].rsplit("/", 1)[1]])
    if "oneOf" in schema:
        found = [faults(value, each) for each in schema["oneOf"]]
        return [] if found.count([]) == 1 else [f"{value!r} is none of {found}"]
    kind = TYPES.get(schema.get("type"), object)
    if not isinstance(value, kind) or (kind is int and isinstance(value, bool)):
        return [f"{value!r} is no {schema['type']}"]
    bad = [f"{value!r} breaks {word}" for word, holds in (
        ("enum", lambda limit: value in limit), ("const", lambda limit: value == limit),
        ("pattern", lambda limit: re.search(limit, value)), ("minimum", lambda limit: value >= limit),
        ("maximum", lambda limit: value <= limit)) if word in schema and not holds(schema[word])]
    if kind is list:
        bad += [fault for item in value for fault in faults(item, schema["items"])]
    if kind is dict:
        bad += [f"{name} is missing" for name in schema["required"] if name not in value]
        bad += [f"{name} is unknown" for name in value if name not in schema["properties"]]
        bad += [fault for name, item in value.items() if name in schema["properties"]
                for fault in faults(item, schema["properties"][name])]
    return bad


def rows_of(out):
    """The objects of --json, each as the schema has it."""
    rows = [json.loads(line) for line in out.splitlines()]
    assert not (found := [fault for row in rows for fault in faults(row, SCHEMA)]), found
    return rows


class ControlTest(SessionTest):
    def run_text(self, *arguments, domain=None, **keywords):
        """Runs zulctl; returns status, standard output and standard error."""
        done = subprocess.run(
            [os.path.join(BIN, "zulctl"), "-d", str(self.domain if domain is None else domain), *map(os.fsencode, map(str, arguments))],
            capture_output=True, check=False, timeout=90, **keywords)
        return done.returncode, os.fsdecode(done.stdout), os.fsdecode(done.stderr)

    def run_json(self, *arguments, **keywords):
        """The same with --json; returns status and the objects."""
        status, out, _ = self.run_text("--json", *arguments, **keywords)
        return status, rows_of(out)

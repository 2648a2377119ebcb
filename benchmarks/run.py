#!/usr/bin/env python3
"""Runs the benchmarks and prints one table of ratios.

usage: run.py <build folder> [<benchmark> ...]

Every figure compares two things that were measured in the same run, in turn, so that a slower or busier machine
changes both. `ours` and `baseline` are medians over the rounds, `ratio` is the median of the rounds' ratios, which
a change between two rounds does not touch. The status is 0 unless a benchmark cannot run: a missed ratio is
information, not a failure.
"""

import contextlib
import itertools
import json
import os
import pathlib
import select
import statistics
import subprocess
import sys
import tempfile
import threading
import time
from typing import Callable, NamedTuple

SOURCE = pathlib.Path(__file__).resolve().parent.parent
PROFILE = SOURCE / "tests" / "support" / "loopback_profile.xml"
PATIENCE = 60  # seconds for a process to print what it must
PROBES = 5  # requests until one finds the responder
LIMIT = 900  # seconds for a whole measuring program

START_UP_RUNS = 21
CHECK_RUNS = 21
CHECKED_BYTES = 4 * 1024 * 1024 - 64 * 1024  # of a document, whose last part goes beyond
COLD_STARTS = 200
UPLOAD_BYTES = 64 * 1024 * 1024
UPLOAD_LINE = b'<element name="padding"><value>an upload of ordinary text</value></element>\n'
PARTS = 1000
MANY_PARTS, FEWER_PARTS = 8000, 2000
COLD_COMMANDS = 100
FEW_ROUTERS, MANY_ROUTERS = 10, 50
FLEET_ROUNDS = 11
LIST_DOMAINS = 10
DISCOVERY_SECONDS = 1


class Figure(NamedTuple):
    """What a measurement is called in the table, its unit, and the ratio that is wanted."""

    title: str
    unit: str
    wanted: str = ""  # "<=", ">=" and a number, or nothing

    def is_met(self, ratio: float) -> str:
        if not self.wanted:
            return ""
        limit = float(self.wanted[2:])
        return "yes" if (ratio <= limit if self.wanted.startswith("<=") else ratio >= limit) else "NO"


FIGURES = {
    "round_trip_p50": Figure("enable, round trip p50 / raw echo", "us", "<=1.15"),
    "round_trip_p99": Figure("enable, round trip p99 / raw echo", "us"),
    "encode_request": Figure("encode request / Fast CDR", "ns", "<=1.0"),
    "decode_request": Figure("decode request / Fast CDR", "ns", "<=1.0"),
    "encode_response": Figure("encode response of 4096 / Fast CDR", "ns", "<=1.0"),
    "decode_response": Figure("decode response of 4096 / Fast CDR", "ns", "<=1.0"),
    "start_up_time": Figure("start to prompt / bare participant", "ms", "<=1.2"),
    "start_up_memory": Figure("peak memory at prompt / bare participant", "KiB", "<=1.1"),
    "whole_process": Figure("whole process of exit / bare participant's", "ms", "<=1.2"),
    "cold_start_median": Figure("cold start to both matched, median / bare", "ms"),
    "cold_start_p95": Figure("cold start to both matched, p95 / bare", "ms", "<=1.0"),
    "cold_start_max": Figure("cold start to both matched, max / bare", "ms", "<=1.0"),
    "get_short_parts": Figure("get of 1000 parts of 16 / 1000 pauses of 1 ms", "ms"),
    "get_full_parts": Figure("get of 1000 parts of 4096 / 1000 pauses of 1 ms", "ms"),
    "get_many_parts": Figure("get of 8000 parts of 4096 / get of 2000", "ms", "<=4.4"),
    "load_rate": Figure("load of 64 MiB / raw writer", "MB/s", ">=0.95"),
    "load_rate_of_file": Figure("load of 64 MiB / raw writer that reads the file", "MB/s", ">=0.97"),
    "load_memory": Figure("peak memory of a 64 MiB load / idle", "KiB", "<=1.2"),
    "cold_command_median": Figure("cold zulctl enable, median / bare start and echo", "ms", "<=1.25"),
    "cold_command_p95": Figure("cold zulctl enable, p95 / bare start and echo", "ms", "<=1.25"),
    "fleet_get": Figure("get, a router of 50 / a router of 10", "ms", "<=1.3"),
    "fleet_memory": Figure("zulctl's memory, a router more / 100 KiB", "KiB", "<=1.0"),
    "fleet_list": Figure("list of 10 domains / discovery and 1 s", "s", "<=1.0"),
    "assignment": Figure("assignment, a character of 64 KiB / of 1 KiB", "ns", "<=1.1"),
    "compare": Figure("comparison of two documents of 4 MB / xmllint of one", "ms", "<=2.0"),
    "update": Figure("router's update, 8000 new properties / 2000", "ns", "<=4.6"),
    "check": Figure("check of a document of 4 MB / xmllint with the DTD", "ms", "<=2.0"),
    "check_types": Figure("check of 4 MB of types / xmllint with the DTD", "ms", "<=2.0"),
}

Samples = dict[str, list[tuple[float, float]]]  # figure -> (ours, baseline) of every round


class BenchmarkError(Exception):
    """A benchmark cannot run."""


@contextlib.contextmanager
def running(command: list[object], until: bytes):
    """A process with its input held open, once it has printed `until`; ended through that input."""
    process = subprocess.Popen([str(word) for word in command], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    try:
        read_until(process, until)
        yield process
    finally:
        with contextlib.suppress(BrokenPipeError):
            process.stdin.write(b"exit\n")  # the shell does not end with its input, the others do
            process.stdin.close()
        process.terminate()  # the practice router does not read its input
        try:
            process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
        process.stdout.close()


def read_until(process: subprocess.Popen, end: bytes) -> bytes:
    """Everything the process prints up to `end`, the last thing it has printed."""
    text = b""
    deadline = time.monotonic() + PATIENCE
    while not text.endswith(end):
        ready, _, _ = select.select([process.stdout], [], [], max(deadline - time.monotonic(), 0))
        chunk = os.read(process.stdout.fileno(), 65536) if ready else b""
        if not chunk:
            raise BenchmarkError(f"{process.args[0]} printed {text!r} and not {end!r}")
        text += chunk
    return text


def milliseconds_of(*command: object, line: bytes = b"", statuses: tuple[int, ...] = (0,)) -> float:
    """How long a whole process takes from its start to its end, with `line` as its input."""
    start = time.perf_counter()
    # A pipe's end tells of a process's end at once; a bare wait with a time limit looks every 50 ms.
    done = subprocess.run([str(word) for word in command], input=line, stdout=subprocess.PIPE, timeout=LIMIT, check=False)
    if done.returncode not in statuses:
        raise BenchmarkError(f"{command[0]} ended with status {done.returncode}")
    return (time.perf_counter() - start) * 1000


def memory_of(process: subprocess.Popen, field: str) -> float:
    """A field of the process's memory statistics, in KiB."""
    for line in pathlib.Path(f"/proc/{process.pid}/status").read_text().splitlines():
        if line.startswith(field + ":"):
            return float(line.split()[1])
    raise BenchmarkError(f"no {field} in the memory statistics")


class Bench:
    """The programs of one build folder, and a folder for the run's own files."""

    def __init__(self, build: pathlib.Path, work: pathlib.Path):
        self.programs = build / "benchmarks"
        self.shell = build / "bin" / "zulrssh"
        self.router = build / "bin" / "zul-practice-router"
        self.zulctl = build / "bin" / "zulctl"
        self.work = work

    def responder(self, domain: int, parts: int = 1, characters: int = 0):
        return running([self.programs / "responder", domain, parts, characters], b"ready\n")

    @contextlib.contextmanager
    def fleet(self, domain: int, count: int):
        """Practice routers router1, router2 and so on, in one process; its log is read, so that it never waits."""
        name = ["router", "--count", count] if count > 1 else ["router1"]
        with running([self.router, "--domain", domain, "--name", *name], b"\n") as process:
            reader = threading.Thread(target=lambda: all(process.stdout))
            reader.start()
            yield
            process.terminate()
            reader.join()

    def rounds_of(self, program: str, *arguments: object) -> Samples:
        """Runs a measuring program: a line is a figure's name, ours and the baseline."""
        command = [str(word) for word in (self.programs / program, *arguments)]
        done = subprocess.run(command, stdout=subprocess.PIPE, text=True, timeout=LIMIT, check=False)
        if done.returncode != 0:
            raise BenchmarkError(f"{program} ended with status {done.returncode}")
        samples: Samples = {}
        for line in done.stdout.splitlines():
            name, ours, baseline = line.split()
            samples.setdefault(name, []).append((float(ours), float(baseline)))
        return samples

    def upload(self) -> pathlib.Path:
        path = self.work / "upload.xml"
        if not path.exists():
            path.write_bytes((UPLOAD_LINE * (UPLOAD_BYTES // len(UPLOAD_LINE) + 1))[:UPLOAD_BYTES])
        return path

    def document(self) -> pathlib.Path:
        """A configuration with many types, profiles that start from each other, and routes that use both."""
        path = self.work / "document.xml"
        if path.exists():
            return path
        parts: dict[str, list[str]] = {"types": [], "profiles": [], "registered": [], "routes": []}
        for i in range(CHECKED_BYTES):
            parts["types"].append(
                f'''        <struct name="T{i}">
            <member name="id" type="int32" key="true"/>
            <member name="text" type="string" stringMaxLength="128"/>
        </struct>\n''')
            parts["profiles"].append(
                f'''        <qos_profile name="P{i}"{f' base_name="L::P{i - 1}"' if i % 10 else ""}>
            <datareader_qos>
                <reliability><kind>RELIABLE_RELIABILITY_QOS</kind></reliability>
                <history>
                    <depth>{i % 50 + 1}</depth>
                </history>
                <resource_limits><max_samples_per_instance>64</max_samples_per_instance></resource_limits>
            </datareader_qos>
        </qos_profile>\n''')
            parts["registered"].append(f'                <register_type name="T{i}" type_ref="T{i}"/>\n')
            parts["routes"].append(
                f'''                <topic_route name="R{i}">
                    <input participant="1">
                        <topic_name>Topic{i}</topic_name>
                        <datareader_qos base_name="L::P{i}"/>
                    </input>
                    <output>
                        <creation_mode>ON_READER</creation_mode>
                    </output>
                    <property>
                        <value><element><name>number</name><value>{i}</value></element></value>
                    </property>
                </topic_route>\n''')
            if i % 100 == 0 and sum(len(text) for part in parts.values() for text in part) > CHECKED_BYTES:
                break
        types, profiles, registered, routes = ("".join(part) for part in parts.values())
        path.write_text(f'''<?xml version="1.0"?>
<dds>
    <types>
{types}    </types>
    <qos_library name="L">
{profiles}    </qos_library>
    <routing_service name="S">
        <domain_route name="D">
            <participant_1>
{registered}                <domain_id>0</domain_id>
            </participant_1>
            <participant_2>
                <domain_id>1</domain_id>
            </participant_2>
            <session name="s">
{routes}            </session>
        </domain_route>
    </routing_service>
</dds>\n''', "ascii")
        return path

    def types(self) -> pathlib.Path:
        """A document of nothing but types: modules, each with a constant, an enum, a typedef, structs and a union."""
        fields = "".join(f'                <member name="field_{i}" type="int32"/>\n' for i in range(8))
        modules: list[str] = []
        size = 0
        while size < CHECKED_BYTES:
            i = len(modules)
            modules.append(
                f'''        <module name="M{i}">
            <const name="ROOM" type="uint32" value="{i % 100 + 1}"/>
            <enum name="Kind">
                <enumerator name="NONE"/>
                <enumerator name="SOME" value="{i % 1000 + 5}"/>
                <enumerator name="ALL"/>
            </enum>
            <typedef name="Name" type="string" stringMaxLength="ROOM"/>
            <struct name="Point">
                <member name="x" type="float64"/>
                <member name="y" type="float64"/>
            </struct>
            <struct name="Track" extensibility="mutable">
                <member name="id" type="int32" key="true" id="10"/>
{fields}                <member name="name" type="nonBasic" nonBasicTypeName="Name"/>
                <member name="points" type="nonBasic" nonBasicTypeName="Point" sequenceMaxLength="ROOM"/>
                <member name="matrix" type="float32" arrayDimensions="3,4"/>
            </struct>
            <union name="Choice">
                <discriminator type="nonBasic" nonBasicTypeName="Kind"/>
                <case><caseDiscriminator value="NONE"/><member name="number" type="int32"/></case>
                <case>
                    <caseDiscriminator value="SOME"/>
                    <caseDiscriminator value="ALL"/>
                    <member name="point" type="nonBasic" nonBasicTypeName="Point"/>
                </case>
            </union>
        </module>\n''')
            size += len(modules[-1])
        path = self.work / "types.xml"
        path.write_text(f'<?xml version="1.0"?>\n<dds>\n    <types>\n{"".join(modules)}    </types>\n</dds>\n', "ascii")
        return path


def round_trip(bench: Bench) -> Samples:
    with bench.responder(40):
        return bench.rounds_of("round_trip", 40)


def get_1000_parts(bench: Bench) -> Samples:
    samples: Samples = {}
    for domain, characters, name in ((41, 16, "get_short_parts"), (42, 4096, "get_full_parts")):
        with bench.responder(domain, PARTS, characters):
            samples |= bench.rounds_of("get_parts", name, characters, domain, PARTS)
    return samples


def get_8000_parts(bench: Bench) -> Samples:
    with bench.responder(46, MANY_PARTS, 4096), bench.responder(47, FEWER_PARTS, 4096):
        return bench.rounds_of("get_parts", "get_many_parts", 4096, 46, MANY_PARTS, 47, FEWER_PARTS)


def start_up(bench: Bench) -> Samples:
    def once(command: list[object]) -> tuple[float, float]:
        start = time.perf_counter()
        with running(command, b"> ") as process:
            return (time.perf_counter() - start) * 1000, memory_of(process, "VmHWM")

    samples: Samples = {"start_up_time": [], "start_up_memory": []}
    for _ in range(START_UP_RUNS):
        ours = once([bench.shell, "-domainId", 43])
        baseline = once([bench.programs / "bare_participant", 43])
        for name, pair in zip(samples, zip(ours, baseline)):
            samples[name].append(pair)
    return samples


def whole_process(bench: Bench) -> Samples:
    return {"whole_process": [(milliseconds_of(bench.shell, "-domainId", 46, line=b"exit\n"),
                               milliseconds_of(bench.programs / "bare_participant", 46)) for _ in range(START_UP_RUNS)]}


def cold_start(bench: Bench) -> Samples:
    """Starts, one a process, until a practice router's endpoints are matched both ways."""
    def once(side: str) -> float:
        command = [bench.programs / "cold_start", side, "47"]
        return float(subprocess.run(command, stdout=subprocess.PIPE, timeout=LIMIT, check=True).stdout)

    with running([bench.router, "--domain", 47, "--name", "router1"], b"\n"):
        sides = [sorted(side) for side in zip(*((once("client"), once("bare")) for _ in range(COLD_STARTS)))]
    at = {"median": COLD_STARTS // 2, "p95": COLD_STARTS * 95 // 100, "max": COLD_STARTS - 1}
    return {f"cold_start_{name}": [(sides[0][index], sides[1][index])] for name, index in at.items()}


def cold_command(bench: Bench) -> Samples:
    """Whole processes, from their start to their end, that enable an entity of one router."""
    def pair() -> tuple[float, float]:
        enable = (bench.zulctl, "-d", 52, "enable", "router1", "DefaultDomainRoute")
        return (milliseconds_of(*enable, statuses=(0, 1)),  # "enabled already" is an answer, too
                milliseconds_of(bench.programs / "cold_start", "echo", 52))

    with bench.fleet(52, 1):
        sides = [sorted(side) for side in zip(*(pair() for _ in range(COLD_COMMANDS)))]
    at = {"median": COLD_COMMANDS // 2, "p95": COLD_COMMANDS * 95 // 100}
    return {f"cold_command_{name}": [(sides[0][index], sides[1][index])] for name, index in at.items()}


def fleet(bench: Bench) -> Samples:
    """`get` of all routers by name, in one command: milliseconds a router, and peak memory."""
    def command(domain: int, count: int) -> tuple[list[str], str]:
        return [str(bench.zulctl), "-d", str(domain)], "get " + ",".join(f"router{i}" for i in range(1, count + 1))

    def once(domain: int, count: int) -> float:
        program, get = command(domain, count)
        return milliseconds_of(*program, *get.split()) / count

    def peak(domain: int, count: int) -> float:
        program, get = command(domain, count)
        # A line of a shell, so that the process is still there to be looked at; the next line says that it is done.
        with subprocess.Popen([*program, "shell"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            process.stdin.write(f"{get}\n--version\n".encode())
            process.stdin.flush()
            lines = itertools.takewhile(lambda line: line and not line.startswith(b"zulctl "), iter(process.stdout.readline, None))
            if sum(line.startswith(b"== ") for line in lines) != count:
                raise BenchmarkError(f"not all of {count} routers answered")
            return memory_of(process, "VmHWM")

    samples: Samples = {"fleet_get": [], "fleet_memory": []}
    with bench.fleet(53, FEW_ROUTERS), bench.fleet(54, MANY_ROUTERS):
        for _ in range(FLEET_ROUNDS):
            samples["fleet_get"].append((once(54, MANY_ROUTERS), once(53, FEW_ROUTERS)))
            more = peak(54, MANY_ROUTERS) - peak(53, FEW_ROUTERS)
            samples["fleet_memory"].append((more / (MANY_ROUTERS - FEW_ROUTERS), 100))
    return samples


def fleet_list(bench: Bench) -> Samples:
    first, last = 60, 60 + LIST_DOMAINS - 1
    samples: Samples = {"fleet_list": []}
    with contextlib.ExitStack() as stack:
        for domain in range(first, last + 1):
            stack.enter_context(bench.fleet(domain, 1))
        for _ in range(FLEET_ROUNDS):
            start = time.perf_counter()
            done = subprocess.run([str(bench.zulctl), "--discovery", str(DISCOVERY_SECONDS), "--json", "list",
                                   "--domains", f"{first}-{last}"], stdout=subprocess.PIPE, timeout=LIMIT, check=True)
            samples["fleet_list"].append((time.perf_counter() - start, DISCOVERY_SECONDS + 1))
            if done.stdout.count(b"\n") != LIST_DOMAINS:
                raise BenchmarkError(f"list found {done.stdout!r}")
    return samples


def load_64mib(bench: Bench) -> Samples:
    with bench.responder(44):
        samples = bench.rounds_of("load", 44, bench.upload())
    with bench.responder(45), running([bench.shell, "-domainId", 45, "-timeout", 5], b"> ") as shell:
        samples["load_memory"] = [load_memory(shell, bench.upload())]
    return samples


def load_memory(shell: subprocess.Popen, upload: pathlib.Path) -> tuple[float, float]:
    """The shell's peak memory while it uploads, and its memory at the prompt before."""

    def command(line: str) -> bool:
        shell.stdin.write(line.encode() + b"\n")
        shell.stdin.flush()
        return b"Result:" in read_until(shell, b"> ")

    for _ in range(PROBES):
        if command("enable router1 DefaultDomainRoute"):
            break
    else:
        raise BenchmarkError("the responder does not answer the shell")
    idle = memory_of(shell, "VmRSS")
    pathlib.Path(f"/proc/{shell.pid}/clear_refs").write_text("5")  # the peak counts from here
    if not command(f"load router1 configuration {upload} local"):
        raise BenchmarkError("the shell's upload was not taken")
    return memory_of(shell, "VmHWM"), idle


def micro(bench: Bench) -> Samples:
    report = bench.work / "micro.json"
    subprocess.run(
        [bench.programs / "micro", f"--benchmark_out={report}", "--benchmark_out_format=json",
         "--benchmark_repetitions=11", "--benchmark_min_time=0.05", "--benchmark_enable_random_interleaving=true"],
        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=LIMIT, check=True)
    times: dict[str, dict[str, list[float]]] = {}
    for run in json.loads(report.read_text())["benchmarks"]:
        if run["run_type"] == "iteration":
            name, side, *length = run["run_name"].split("/")
            per = float(length[0]) if length else 1.0
            times.setdefault(name, {}).setdefault(side, []).append(run["cpu_time"] / per)
    return {name: list(zip(sides["ours"], sides["baseline"])) for name, sides in times.items()}


def against_xmllint(name: str, document: pathlib.Path, *command: object) -> Samples:
    """Milliseconds of a whole process, against a validation of the document by its DTD."""
    xmllint = ("xmllint", "--noout", "--nonet", "--dtdvalid", SOURCE / "resource/dtd/routing_service.dtd", document)
    return {name: [(milliseconds_of(*command), milliseconds_of(*xmllint)) for _ in range(CHECK_RUNS)]}


def check(bench: Bench) -> Samples:
    document, types = bench.document(), bench.types()
    return (against_xmllint("check", document, bench.zulctl, "check", document)
            | against_xmllint("check_types", types, bench.zulctl, "check", types))


def compare(bench: Bench) -> Samples:
    """What diff does with the two documents."""
    document = bench.document()
    return against_xmllint("compare", document, bench.programs / "compare_documents", document, document)


BENCHMARKS: list[Callable[[Bench], Samples]] = [round_trip, micro, start_up, whole_process, cold_start,
                                                 get_1000_parts, get_8000_parts, load_64mib, cold_command, fleet,
                                                 fleet_list, check, compare]


def print_table(samples: Samples) -> None:
    print(f"{'':50}{'ours':>11}{'baseline':>11}  {'unit':5}{'ratio':>7}{'wanted':>8}  met")
    for name, figure in FIGURES.items():
        if name in samples:
            ours, baseline = (statistics.median(side) for side in zip(*samples[name]))
            ratio = statistics.median(pair[0] / pair[1] for pair in samples[name])
            print(f"{figure.title:50}{ours:11.5g}{baseline:11.5g}  {figure.unit:5}{ratio:7.3f}{figure.wanted:>8}  "
                  f"{figure.is_met(ratio)}".rstrip())


def main() -> int:
    names = {benchmark.__name__: benchmark for benchmark in BENCHMARKS}
    unknown = [name for name in sys.argv[2:] if name not in names]
    if len(sys.argv) < 2 or unknown:
        print(f"usage: {sys.argv[0]} <build folder> [{' | '.join(names)}]...", file=sys.stderr)
        return 2
    os.environ["FASTRTPS_DEFAULT_PROFILES_FILE"] = str(PROFILE)  # loopback only
    samples: Samples = {}
    with tempfile.TemporaryDirectory() as work:
        bench = Bench(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(work))
        for name in sys.argv[2:] or names:
            print(f"running {name} ...", file=sys.stderr)
            try:
                samples |= names[name](bench)
            except (BenchmarkError, OSError, subprocess.SubprocessError) as error:
                print(f"{name} cannot run: {error}", file=sys.stderr)
                return 1
    print_table(samples)
    return 0


if __name__ == "__main__":
    sys.exit(main())

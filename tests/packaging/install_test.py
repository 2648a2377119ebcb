"""What is installed: a program built against it, the programs from the Debian package, manual pages, completion."""

import os
import pathlib
import re
import subprocess
import tempfile

import processes
from processes import SessionTest

BUILD = os.environ["ZUL_BUILD"]
SOURCE = os.environ["ZUL_SOURCE"]


def run(*command, **keywords):
    """Runs to the end; returns standard output."""
    done = subprocess.run(command, capture_output=True, text=True, check=False, **keywords)
    if done.returncode != 0:
        raise AssertionError(f"{command}: {done.returncode}\n{done.stdout[-4000:]}\n{done.stderr[-4000:]}")
    return done.stdout


class Install(SessionTest):
    domain = 62

    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.directory.cleanup)
        cls.prefix = os.path.join(cls.directory.name, "prefix")
        run("cmake", "--install", BUILD, "--prefix", cls.prefix)

    def build(self, source):
        """Builds a program against what is installed; returns where."""
        build = os.path.join(self.directory.name, "build-" + os.path.basename(source))
        run("cmake", "-S", source, "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}", "-DCMAKE_BUILD_TYPE=Debug")
        run("cmake", "--build", build)
        return build

    def test_a_program_builds_against_the_installed_library_and_steers_a_router(self):
        source = os.path.join(self.prefix, "share/doc/zul-remote-config/examples/enable_entity")
        arguments = [os.path.join(self.build(source), "enable_entity"), str(self.domain), "r1", "DefaultDomainRoute"]
        other = self.router("other", "--verbose")
        early = subprocess.Popen(arguments, stderr=subprocess.PIPE, text=True)
        self.addCleanup(early.kill)
        other.expect("GET [^\n]* target r1 ")  # a router is there, the addressed one is not
        router = self.router()
        self.assertIn("DefaultDomainRoute is enabled already", early.communicate(timeout=60)[1])
        self.assertEqual(early.returncode, 1)
        self.assertIn("Result: ", self.shell(router=router).run("disable r1 DefaultDomainRoute"))
        self.assertIn("enabled", run(*arguments))

    def test_the_installed_readme_names_only_what_is_installed(self):
        share = os.path.join(self.prefix, "share")
        text = pathlib.Path(share, "doc/zul-remote-config/README.md").read_text("utf-8")
        self.assertNotIn("./", text)
        named = re.findall(r"/usr/share(/[\w./-]*\w)", text)
        named += [f"/man/man1/{page}.1.gz" for page in re.findall(r"([\w-]+)\(1\)", text)]
        self.assertGreater(len(named), 6)
        self.assertEqual([path for path in named if not os.path.exists(share + path)], [])

    def test_every_installed_header_stands_for_itself(self):
        include = os.path.join(self.prefix, "include/zul")
        headers = [os.path.relpath(os.path.join(folder, name), include)
                   for folder, _, names in os.walk(include) for name in names if name.endswith(".h")]
        self.assertGreater(len(headers), 30)
        # Each may only lean on what it includes: whatever the order, all compile.
        for order in (sorted(headers), sorted(headers, reverse=True)):
            text = "".join(f'#include "{header}"\n' for header in order)
            run("g++", "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", "-I", include, "-I/usr/include/libxml2",
                "-x", "c++", "-", input=text)

    def test_a_program_may_use_the_types_alone(self):
        source = os.path.dirname(self.file("CMakeLists.txt", """cmake_minimum_required(VERSION 3.25)
            project(types CXX)
            find_package(zul_remote_config REQUIRED)
            add_executable(types types.cpp)
            target_link_libraries(types zul::remote_config)"""))
        self.file(f"{source}/types.cpp", """#include "admin_types/type_support.h"
            int main() {
                auto* sample = ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data();
                ZUL_RoutingService_Administration_CommandRequestTypeSupport_print_data(sample, "request", 0);
                return ZUL_RoutingService_Administration_CommandRequestTypeSupport_delete_data(sample);
            }""")
        self.assertIn("target_router", run(os.path.join(self.build(source), "types")))

    def test_the_debian_packages_hold_programs_that_run(self):
        packages = os.path.join(self.directory.name, "packages")
        root = os.path.join(self.directory.name, "root")
        run("cpack", "-B", packages, cwd=BUILD)
        found = sorted((name for name in os.listdir(packages) if name.endswith(".deb")), key=len)
        self.assertEqual([name.split("_")[0] for name in found], ["zul-remote-config", "zul-remote-config-dev"])
        for name in found:
            run("dpkg-deb", "-x", os.path.join(packages, name), root)
        depends = run("dpkg-deb", "-f", os.path.join(packages, found[0]), "Depends")
        for library in ("libfastrtps", "libxml2", "libc6"):
            self.assertIn(library, depends)
        processes.BIN, before = os.path.join(root, "usr/bin"), processes.BIN
        self.addCleanup(setattr, processes, "BIN", before)
        self.assertIn("Result: ", self.shell(router=self.router()).run("get r1"))
        share = os.path.join(root, "usr/share")
        for variant in ("routing", "federation"):
            run("xmllint", "--noout", "--dtdvalid", f"{share}/zul_remote_config/dtd/{variant}_service.dtd",
                f"{share}/zul_remote_config/xml/ZUL_{variant.upper()}_SERVICE.xml")
        self.assertEqual(sorted(os.listdir(f"{share}/man/man1")),
                         ["zul-practice-router.1.gz", "zulctl.1.gz", "zulfssh.1.gz", "zulrssh.1.gz"])

    def test_options_are_completed(self):
        folder = os.path.join(self.prefix, "share/bash-completion/completions")
        for program, word, expected in (("zulrssh", "-d", "-domainId"), ("zulfssh", "-cm", "-cmdFile"), ("zulctl", "du", "dupdate"),
                                        ("zulctl", "get r --output = /et", "/etc"), ("zulctl", "get r --output=/et", "--output=/etc"),
                                        ("zul-practice-router", "--dom", "--domain")):
            # What bash does: it loads the file of the program's name and calls the function registered there.
            script = f"""source '{folder}/{program}'
                COMP_WORDS=({program} {word}); COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)); COMP_LINE='{program} {word}'
                COMP_POINT=${{#COMP_LINE}}
                "$(complete -p {program} | sed 's/.*-F \\([^ ]*\\).*/\\1/')" {program} {word} {program}
                printf '%s\\n' "${{COMPREPLY[@]}}" """
            self.assertIn(expected, [line.strip() for line in run("bash", "-c", script).split("\n")], program)

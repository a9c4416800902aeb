# SPDX-License-Identifier: Apache-2.0
"""Holds the documents against the project: links and paths lead somewhere, code stands in a file that is built, commands
run and print what is shown, options exist and are told of. docs_test.py TOP BUILD

In a document, code comes from a file (a region stands between "// [name]" and "// [/name]"), and output from the
commands above it, where "…" is any text and any number of lines:

    <!-- snippet: docs/snippets/controller.cpp#ports -->     <!-- output -->
"""

import fnmatch
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap
import unittest

from driver import Sandbox

TOP, BUILD = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
DOCS = sorted([*TOP.glob("*.md"), *TOP.glob("docs/*.md")])
FENCE = re.compile(r"((?:^<!-- [^\n]* -->\n\n?)?)^```(\w*)\n(.*?)^```$", re.M | re.S)
OURS = {"korvane-sandbox", "korvane-wire", "korvane-journey", "korvane-demo", "run", "test", "bench"}
# Too long or too far for this check: run by themselves, the tests of the installed component and of the demo, and ./test.
ELSEWHERE = r"\./(run|test|bench)\b|cmake |\./cmake/install-packages|cc |cpack |ctest |build/quick-host/|(QT_\w+=\w+ )*build/\w+/bin/korvane-demo "


def plain(text):
    """The document without its blocks of code."""
    return FENCE.sub("", text)


def anchors(path):
    heads = re.findall(r"^#+ (.*)$", plain(path.read_text()), re.M)
    return {re.sub(r"[^\w\- ]", "", head.lower()).replace(" ", "-") for head in heads}


def region(name):
    file, _, wanted = name.partition("#")
    text = (TOP / file).read_text()
    if wanted:
        inside = re.search(rf"(?m)^ *(?://|#) \[{wanted}\]\n(.*?)^ *(?://|#) \[/{wanted}\]", text, re.S)[1]
        return textwrap.dedent(inside)
    return re.sub(r"\A(//|#|/\*) SPDX[^\n]*\n", "", text)


def replaced(text, names):
    return re.sub("|".join(names), lambda found: names[found[0]], text)


def elsewhere(line):
    return re.match(ELSEWHERE, line)


def commands(block):
    """The lines of a block with continued ones and here-documents joined to their first line."""
    block = re.sub(r"\\\n\s*", "", block)
    block = re.sub(r"<<'END'\n.*?^END$", "", block, flags=re.M | re.S)
    return [line.split("  # ")[0].strip() for line in block.splitlines() if line.strip() and not line.startswith("#")]


def options(program):
    if (TOP / program).is_file():
        return set(re.findall(rf"(?m)^#   \./{program} (--[\w-]+)", (TOP / program).read_text()))
    told = subprocess.run([BUILD / "bin" / program, "--help"], capture_output=True, text=True, check=True,
                          env={**os.environ, "QT_QPA_PLATFORM": "offscreen"}).stdout
    return set(re.findall(r"(?m)(?:^ +(?:-\w, )?|\[)(--[\w-]+)", told))


def tests():
    """The names that a document may give a test: "Suite", "Suite.Name", and those of ctest."""
    listed = subprocess.run(["ctest", "--test-dir", BUILD, "-N", "-C", "Full"], capture_output=True, text=True, check=True).stdout
    found = set(re.findall(r"#\d+: (\S+)", listed))
    files = [*TOP.glob("tests/**/*.cpp"), *TOP.glob("tests/**/*.h"), *TOP.glob("include/korvane/contracts/*.h")]
    sources = "\n".join(path.read_text() for path in files)
    for suite, name in re.findall(r"(?m)^(?:TYPED_)?TEST(?:_F|_P)?\((\w+), (\w+)\)", sources):
        for shown in re.findall(rf"(?m)^#define {suite} (\w+)", sources) or [suite]:
            found |= {shown, f"{shown}.{name}"}
    listed = (TOP / "tests/project/CMakeLists.txt").read_text()  # some builds leave out what it adds
    found |= {"install." + case for case in re.search(r"foreach\(case (Install .*?)\)", listed)[1].split()}
    return found | set(re.findall(r"NAME (\w+\.\w+)", listed))


def of_each_document(test):
    def run(self):
        for path in DOCS:
            with self.subTest(path.name):
                test(self, path, path.read_text())
    return run


class Documents(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.known_tests = tests()

    @of_each_document
    def test_links_files_and_tests_that_are_named_exist(self, path, text):
        for target in re.findall(r"\]\((?!https?:|mailto:)([^)\s]+)\)", plain(text)):
            file, _, anchor = target.partition("#")
            other = (path.parent / file).resolve() if file else path
            self.assertTrue(other.exists(), f"{target} is not there")
            self.assertTrue(not anchor or anchor in anchors(other), target)
        folders = "|".join(sorted(entry.name for entry in TOP.iterdir() if entry.is_dir() and entry.name[0] != "."))
        for name in re.findall(rf"`(?!build/)((?:{folders})/[\w./*-]+)`", text):
            self.assertTrue(list(TOP.glob(name.rstrip("/"))), f"{name} is not there")
        known = self.known_tests
        for name in re.findall(r"`((?:access|docs|explorer|faults|fuzz|install|journey|project|soak)\.[\w*-]+|[A-Z]\w+\.[A-Z]\w+)`", text):
            self.assertTrue(fnmatch.filter(known, name), f"no test {name}")
        for name in re.findall(r"`(\w+Test)`", text):
            self.assertTrue(list(TOP.glob(f"tests/**/{name}.*")), f"no test {name}")

    @of_each_document
    def test_each_row_with_a_column_for_it_names_its_tests(self, path, text):
        for rows in re.findall(r"(?m)^\|.* Tests \|\n\|[-|]+\n((?:^\|.*\n?)+)", text):
            for row in rows.splitlines():
                last = row.rstrip(" |").rpartition(" | ")[2]
                names = re.findall(r"`([^`]+)`", last)
                self.assertTrue(names, f"{row} names no test")
                self.assertEqual(set(names) - self.known_tests, set(), row)

    def test_the_security_page_has_a_test_for_each_claim(self):
        text = (TOP / "SECURITY.md").read_text()
        for title in "Threat model", "What is protected", "What is wiped", "Changes since 1.0":
            self.assertRegex(text, rf"(?s)\n## {title}[^\n]*\n(?:(?!\n## ).)*?\n\|[^\n]* Tests \|\n", title)

    @of_each_document
    def test_code_stands_in_a_file_that_is_built(self, path, text):
        for marker, language, code in FENCE.findall(text):
            if name := re.match(r"<!-- snippet: (\S+) -->", marker):
                self.assertEqual(code, region(name[1]), name[1])
            else:
                self.assertIn(language, ("sh", "text", "json"), "code of no file:\n" + code)
                self.assertEqual(language == "text", marker.startswith("<!-- output -->"), "neither command nor output:\n" + code)
        self.assertNotRegex(plain(text), r"(?m)^    (\./|build/|cmake|ctest|curl|korvane::)", "a block without a fence")

    @of_each_document
    def test_commands_run_and_print_what_is_shown(self, path, text):
        blocks = [(marker, language, code) for marker, language, code in FENCE.findall(text)
                  if language == "sh" or marker.startswith("<!-- output -->")]
        printed = iter(self.play([code for _, language, code in blocks if language == "sh"]))
        for _, language, code in blocks:
            if language == "sh":
                shown = next(printed)
            else:
                wanted = re.escape(code).replace("…\\\n", "(?s:.*)").replace("…", ".*")
                self.assertRegex(shown.rstrip("\n") + "\n", rf"\A{wanted}\Z")

    def test_wire_examples_are_what_openssl_and_the_card_service_read(self):
        text = (TOP / "docs/services.md").read_text()
        read = re.findall(r'\{"(encrypted\w+)",\s+&Rest', (TOP / "src/transport/WireRecords.h").read_text())
        key, iv = re.findall(r"^\| (?:Key|IV) \| `(\w+)`", text, re.M)
        service = Sandbox()
        self.addCleanup(service.stop)
        service.ask("POST", "/host/iv", {})
        sections = text.split("\n### ")[1:]
        self.assertEqual(len(sections), 10)
        for section in sections:
            path = re.search(r"`POST (/\S+)`", section)[1]
            request, reply = (code for _, _, code in FENCE.findall(section))
            # What it understands it refuses for its token or its IV, anything else for a key.
            answer = subprocess.run(["curl", "-sS", "--cacert", service.ca, "-HContent-Type: application/json", "-HAccept: application/json",
                                     "-d", request, "-w%{http_code}", service.url + path], capture_output=True, text=True, check=True).stdout
            self.assertRegex(answer, r"401$|encryptedResult.*400$", path)
            self.assertLessEqual(json.loads(reply).keys(), set(read))
            clear = dict(re.findall(r"^\| `(encrypted\w+)` \| (?:`(.*)`)? ?\|$", section, re.M))
            fields = [*json.loads(request).items(), *json.loads(reply).items()]
            self.assertEqual({name for name, _ in fields if name.startswith("encrypted")}, set(clear))
            for name, value in fields:
                if name in clear:
                    done = subprocess.run(["openssl", "enc", "-d", "-aes-256-cbc", "-K", key, "-iv", iv, "-base64", "-A"],
                                          input=value + "\n", capture_output=True, text=True, check=True)
                    self.assertEqual(done.stdout, clear[name], name)

    def play(self, blocks):
        """Runs the blocks of a document in one shell, in a folder that looks like the project's. Gives their outputs."""
        script = "set -e\ntrap 'kill $(jobs -p) 2>/dev/null || true' EXIT\n"
        for code in blocks:
            if not any(elsewhere(line) for line in commands(code)):
                # What goes on in the background is waited for: it tells where it is.
                told = re.sub(r"(>/dev/null)? &$", " >told &", code, flags=re.M)
                script += "rm -f told\n" + told
                script += "until [ -s told ]; do kill -0 $!; sleep 0.05; done\n" * (told != code)
                script += "cat told\n" * (told != code and ">/dev/null &" not in code)
            script += "echo '@@@'\n"
        first = 20000 + os.getpid() % 6000 * 2
        ports = {"8443": str(first), "9443": str(first + 1)}
        with tempfile.TemporaryDirectory() as folder:
            for entry in TOP.iterdir():
                if entry.name not in ("build", ".git"):
                    pathlib.Path(folder, entry.name).symlink_to(entry)
            pathlib.Path(folder, "build").mkdir()
            for name in ("release", "dev"):
                pathlib.Path(folder, "build", name).symlink_to(BUILD)
            done = subprocess.run(["bash", "-c", replaced(script, ports)], cwd=folder, text=True, timeout=200,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL,
                                  env={**os.environ, "PATH": f"{BUILD}/bin:{os.environ['PATH']}"})
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        shown = replaced(done.stdout, {port: name for name, port in ports.items()})
        return [part.lstrip("\n") for part in shown.split("@@@\n")]

    def test_options_exist_and_are_told_of(self):
        own = {program: options(program) for program in OURS if (TOP / program).exists() or (BUILD / "bin" / program).exists()}
        text = re.sub(r"\\\n\s*", "", "\n".join(path.read_text() for path in DOCS))
        told = set(re.findall(r"(?<![\w-])--[a-z][\w-]*", text))
        for program, existing in own.items():
            self.assertLessEqual(existing - {"--help", "--help-all"}, told, f"{program} has options that no document names")
            known = existing | {"--help"} | (own.get("korvane-demo", set()) if program == "run" else set())  # which gets them
            for line in re.findall(rf"(?m)(?:^|`|=\S* )(?:\S*/)?{program} ([^`\n]*)", text):
                self.assertLessEqual(set(re.findall(r"(?:^| )(--[a-z][\w-]*)", line)), known, f"{program} {line}")
        self.assertLessEqual(set(re.findall(r"`(--[a-z][\w-]*)", text)), set().union({"--help"}, *own.values()), "no program of ours takes it")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)

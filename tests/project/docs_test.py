# SPDX-License-Identifier: Apache-2.0
"""Holds the documents against the project: links and paths lead somewhere, code stands in a file that is built, commands
run and print what is shown, options exist and are told of. `docs_test.py TOP BUILD --write` puts code and output in.

In a document, code comes from a file (a region stands between "// [name]" and "// [/name]"), and output from the
commands above it, where "…" is any text and any number of lines:

    <!-- snippet: docs/snippets/controller.cpp#ports -->     <!-- output -->
"""

import fnmatch
import functools
import json
import os
import pathlib
import re
import socket
import subprocess
import sys
import tempfile
import unittest

TOP, BUILD = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
WRITE = "--write" in sys.argv
DOCS = sorted([*TOP.glob("*.md"), *TOP.glob("docs/*.md")])
FENCE = re.compile(r"((?:^<!-- [^\n]* -->\n\n?)?)^```(\w*)\n(.*?)^```$", re.M | re.S)
OURS = {"korvane-sandbox", "korvane-wire", "korvane-journey", "korvane-demo", "run", "test", "bench"}
# Too long or too far for this check; what runs them instead.
ELSEWHERE = {
    r"\./(run|test|bench)\b": "themselves; their options are compared below",
    r"cmake |\./cmake/install-packages|cc |cpack |build/quick-host/": "the tests of the installed component",
    r"ctest |doxygen$|tests/project/docs_test\.py ": "./test",
    r"(QT_\w+=\w+ )*build/\w+/bin/korvane-demo ": "./run, and the demo's tests; their options are compared below",
    r"apps/demo/gallery\.py ": "./run --gallery",
}


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
        indent = min(len(line) - len(line.lstrip()) for line in inside.splitlines() if line)
        return "".join(line[indent:] or "\n" for line in inside.splitlines(True))
    return re.sub(r"\A(//|#|/\*) SPDX[^\n]*\n", "", text)


def elsewhere(line):
    return any(re.match(start, line) for start in ELSEWHERE)


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


def of_each_document(test):
    def run(self):
        for path in DOCS:
            with self.subTest(path.name):
                test(self, path, path.read_text())
    return run


class Documents(unittest.TestCase):
    maxDiff = None

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
        listed = subprocess.run(["ctest", "--test-dir", BUILD, "-N"], capture_output=True, text=True, check=True).stdout
        for name in re.findall(r"`((?:access|docs|install|journey|project)\.[\w*]+)`", text):
            self.assertTrue(fnmatch.filter(re.findall(r"#\d+: (\S+)", listed), name), f"no test {name}")
        for name in re.findall(r"`(\w+Test)`", text):
            self.assertTrue(list(TOP.glob(f"tests/**/{name}.*")), f"no test {name}")

    @of_each_document
    def test_code_stands_in_a_file_that_is_built(self, path, text):
        def checked(found):
            marker, language, code = found.groups()
            name = re.match(r"<!-- snippet: (\S+) -->", marker)
            self.assertIn(language, ("sh", "text", "json", "cpp", "c", "qml", "cmake"))
            self.assertEqual(language == "text", marker.startswith("<!-- output -->"), "neither command nor output:\n" + code)
            if not name:
                self.assertNotIn(language, ("cpp", "c", "qml", "cmake"), "code of no file:\n" + code)
                return found.group()
            if not WRITE:
                self.assertEqual(code, region(name[1]), name[1])
            return f"{marker}```{language}\n{region(name[1])}```"
        changed = FENCE.sub(checked, text)
        if WRITE:
            path.write_text(changed)
        self.assertNotRegex(plain(text), r"(?m)^    (\./|build/|cmake|ctest|curl|korvane::)", "a block without a fence")

    @of_each_document
    def test_commands_run_and_print_what_is_shown(self, path, text):
        blocks = [(marker, language, code) for marker, language, code in FENCE.findall(text)
                  if language == "sh" or marker.startswith("<!-- output -->")]
        shells = [code for _, language, code in blocks if language == "sh"]
        if not any(not elsewhere(line) for code in shells for line in commands(code)):
            return
        printed = iter(self.play(shells))
        shown = ""
        for marker, language, code in blocks:
            if language == "sh":
                shown = next(printed)
                continue
            wanted = re.escape(code).replace("…\\\n", "(?s:.*)").replace("…", ".*")
            if WRITE and "…" not in code:
                path.write_text(path.read_text().replace(f"{marker}```{language}\n{code}```", f"{marker}```{language}\n{shown.rstrip()}\n```"))
            else:
                self.assertRegex(shown.rstrip("\n") + "\n", rf"\A{wanted}\Z")

    @of_each_document
    def test_builds_name_what_there_is_to_build(self, path, text):
        presets = {preset["name"] for preset in json.loads((TOP / "CMakePresets.json").read_text())["configurePresets"]}
        ours = set(re.findall(r"option\((KORVANE_\w+)", (TOP / "CMakeLists.txt").read_text()))
        for line in [line for _, _, code in FENCE.findall(text) for line in commands(code) if line.startswith("cmake ")]:
            self.assertLessEqual(set(re.findall(r"--preset (\w+)", line)), presets, line)
            self.assertLessEqual(set(re.findall(r"-D(KORVANE_\w+)=", line)), ours, line)
            for target in re.findall(r"--target (\S+)", line):
                self.assertRegex((BUILD / "build.ninja").read_text(), rf"(?m)^build {target}: phony", line)

    def test_wire_examples_are_what_openssl_and_the_card_service_read(self):
        text = (TOP / "docs/services.md").read_text()
        read = re.findall(r'\{"(encrypted\w+)",\s+&Rest', (TOP / "src/transport/WireRecords.h").read_text())
        key, iv = re.findall(r"^\| (?:Key|IV) \| `(\w+)`", text, re.M)
        service = subprocess.Popen([BUILD / "bin/korvane-sandbox", "--http"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(service.communicate)
        self.addCleanup(service.kill)
        url = json.loads(service.stdout.readline())["url"]
        subprocess.run(["curl", "-sS", "-XPOST", url + "/host/iv"], stdout=subprocess.DEVNULL, check=True)
        sections = text.split("\n### ")[1:]
        self.assertEqual(len(sections), 10)
        for section in sections:
            path = re.search(r"`POST (/\S+)`", section)[1]
            request, reply = (code for _, _, code in FENCE.findall(section))
            # What it understands it refuses for its token or its IV, anything else for a key.
            answer = subprocess.run(["curl", "-sS", "-HContent-Type: application/json", "-HAccept: application/json", "-d", request,
                                     "-w%{http_code}", url + path], capture_output=True, text=True, check=True).stdout
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
            lines = commands(code)
            mixed = {elsewhere(line) for line in lines}
            self.assertEqual(len(mixed), 1, "a block is run whole or not at all:\n" + code)
            if mixed == {False}:
                # What goes on in the background is waited for: its port is open, and it has told where it is.
                told, waited = re.subn(r"(?<!null) &$", " >told &", code, flags=re.M)
                script += "rm -f told\n" + told
                if " &\n" in code:
                    tells = "&& [ -s told ]" if waited else ""
                    script += f"until (: </dev/tcp/localhost/8443) 2>/dev/null {tells}; do kill -0 $!; sleep 0.05; done\n"
                    script += "cat told\n" if waited else ""
            script += "echo '@@@'\n"
        with tempfile.TemporaryDirectory() as folder, socket.socket() as taken, socket.socket() as other:
            for entry in TOP.iterdir():
                if entry.name not in ("build", ".git"):
                    pathlib.Path(folder, entry.name).symlink_to(entry)
            pathlib.Path(folder, "build").mkdir()
            for name in ("release", "dev"):
                pathlib.Path(folder, "build", name).symlink_to(BUILD)
            ports = {}
            for name, free in (("8443", taken), ("9443", other)):
                free.bind(("localhost", 0))
                ports[name] = str(free.getsockname()[1])
                script = script.replace(name, ports[name])
            taken.close(), other.close()
            done = subprocess.run(["bash", "-c", script], cwd=folder, text=True, timeout=200,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.DEVNULL,
                                  env={**os.environ, "PATH": f"{BUILD}/bin:{os.environ['PATH']}"})
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        shown = functools.reduce(lambda text, names: text.replace(names[1], names[0]), ports.items(), done.stdout)
        return [part.lstrip("\n") for part in shown.split("@@@\n")]

    def test_options_exist_and_are_told_of(self):
        own = {program: options(program) for program in OURS if (TOP / program).exists() or (BUILD / "bin" / program).exists()}
        known = {program: existing | {"--help"} for program, existing in own.items()}
        known["run"] |= own.get("korvane-demo", set())  # which gets them
        told = set()
        for path in DOCS:
            with self.subTest(path.name):
                text = path.read_text()
                told |= set(re.findall(r"(?<![\w-])--[a-z][\w-]*", text))
                lines = [line for _, language, code in FENCE.findall(text) if language == "sh" for line in commands(code)]
                for line in lines + re.findall(r"`([^`\n]+)`", plain(text)):
                    program = re.match(r"(?:\w+=\S* )*(?:\S*/)?([\w-]+)", line)
                    used = set(re.findall(r"(?:^|(?<= ))--[a-z][\w-]*", line))
                    if line.startswith("--"):
                        self.assertLessEqual(used, set().union(*known.values()), "no program of ours takes it")
                    elif program and program[1] in known:
                        self.assertLessEqual(used, known[program[1]], line)
        for program, existing in own.items():
            self.assertLessEqual(existing - {"--help", "--help-all"}, told, f"{program} has options that no document names")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)

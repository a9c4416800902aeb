# SPDX-License-Identifier: Apache-2.0
"""The house rules that a machine can check. rules_test.py TOP BUILD COMPILER [CASE …]"""

import concurrent.futures
import graphlib
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

TOP, BUILD = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
# From the lowest up. platform/ stands for the ports; its adapters are no part of the core.
LAYERS = ["base", "platform", "sdk", "transport", "custody", "operations", "uikit", "flows", "capi"]
OUTSIDE = ("platform/linux/", "platform/qt/", "platform/fakes/", "uikit/quick/", "capi/")
# Setting up is where the layers meet.
MAY_REACH_UP = {"sdk/Initialize.cpp": {"custody", "transport"}}
FOREIGN = ("Q", "qt", "curl/", "glib", "gio/", "libsecret/", "dbus/")
PUBLIC_FOREIGN = FOREIGN + ("openssl/", "rapidjson/", "gmock/")


def sources(*folders):
    """The C++ files below the folders that the project tracks or is about to."""
    listed = subprocess.run(["git", "-C", TOP, "ls-files", "-co", "--exclude-standard", "--", *folders],
                            capture_output=True, text=True, check=True).stdout.splitlines()
    found = [TOP / name for name in listed if name.endswith((".h", ".cpp")) and (TOP / name).exists()]
    assert len(found) > 20, "too few files were found: is this the project's folder?"
    return found


def includes(path):
    return re.findall(r'(?m)^\s*#\s*include\s*[<"]([^>"]+)[>"]', path.read_text())


class Rules(unittest.TestCase):
    def test_layering(self):
        """No folder of the core includes one above it, files do not include each other in a circle, and neither the core
        nor a public header needs a toolkit or a device library."""
        faults, edges = [], {}
        for path in sources("src"):
            name = path.relative_to(TOP / "src").as_posix()
            if name.startswith(OUTSIDE):
                continue
            edges[name] = [other for other in includes(path) if (TOP / "src" / other).exists()]
            faults += [(name, other) for other in includes(path) if other.startswith(FOREIGN + OUTSIDE)]
            for other in edges[name]:
                mine, above = name.split("/")[0], other.split("/")[0]
                if LAYERS.index(above) > LAYERS.index(mine) and above not in MAY_REACH_UP.get(name, ()):
                    faults.append((name, other))
        for path in sources("include"):
            foreign = PUBLIC_FOREIGN + ("gtest/",) * (path.parent.name != "contracts")
            faults += [(path.name, other) for other in includes(path) if other.startswith(foreign)]
        self.assertEqual(faults, [], "which must not be included there")
        graphlib.TopologicalSorter(edges).prepare()  # raises when there is a circle

    def test_journeys_do_not_share_state(self):
        """The process-wide record is looked up at the edges alone; all other code is handed what it works for."""
        calls = {path.relative_to(TOP / "src").as_posix() for path in sources("src")
                 if re.search(r"SdkConfig::sharedInstance\(\)[^\n]", path.read_text().replace("SdkConfig::sharedInstance() {", ""))}
        self.assertEqual(calls, {"capi/korvane.cpp", "flows/Journey.cpp", "sdk/Initialize.cpp", "transport/FieldCipher.cpp",
                                 "transport/Preparation.cpp", "uikit/quick/Theme.cpp"})
        variable = r"(?m)^\s*(?:static|inline) (?!constexpr)(?!const [\w:<>]+ \w)[\w:<>*& ]+ \w+\s*(?:=|;|\{)"
        held = [path.name for path in sources("src/flows", "src/operations") if re.search(variable, path.read_text())]
        self.assertEqual(held, ["Screen.cpp"], "which keep something beside the journeys' states; Screen.cpp counts screens")

    def test_headers_compile_alone(self):
        """As C too, where they say that they can."""
        def complaints(job):
            header, language, standard = job
            name = header.relative_to(TOP / "include").as_posix()
            return subprocess.run(
                [sys.argv[3], "-std=" + standard, "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-I", TOP / "include",
                 "-I", BUILD / "include", "-x", language, "-"], input=f"#include <{name}>\n", capture_output=True, text=True).stderr
        headers = sources("include")
        jobs = [(header, "c++", "c++20") for header in headers]
        jobs += [(header, "c", "c99") for header in headers if "#ifdef __cplusplus" in header.read_text()]
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            self.assertEqual("".join(pool.map(complaints, jobs)), "")

    def test_format(self):
        tool = shutil.which("clang-format") or shutil.which("clang-format-14")
        files = sources("include", "src", "sandbox", "apps", "tests", "fuzz", "benchmarks", "examples", "docs")
        done = subprocess.run([tool, "--dry-run", "--Werror", *files], capture_output=True, text=True, cwd=TOP)
        self.assertEqual((done.stderr, done.returncode), ("", 0))

    def test_reference(self):
        """Every public name has a comment of its own: the generator takes a warning for an error."""
        out = BUILD / "reference"
        shutil.rmtree(out, ignore_errors=True)  # pages of names that are gone
        out.mkdir(parents=True)
        settings = (TOP / "Doxyfile").read_text() + f"\nOUTPUT_DIRECTORY = {out}\n"
        done = subprocess.run(["doxygen", "-"], input=settings, cwd=TOP, capture_output=True, text=True)
        self.assertEqual(done.stderr if done.returncode else "", "")
        self.assertTrue((out / "index.html").exists())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[4:], verbosity=2)

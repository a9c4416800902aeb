# SPDX-License-Identifier: Apache-2.0
"""The component as a host gets it: installed into a clean prefix, found from there, built against, and run."""

import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest
import urllib.parse

from driver import HOSTILE_IV_ANSWERS, IvServer, Sandbox

BUILD = pathlib.Path(os.environ["KORVANE_BUILD"])
SOURCE = pathlib.Path(__file__).parents[2]
PREFIX = BUILD / "outside/prefix"
SCREENLESS = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"}


def run(*command, **options):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command}: {done.returncode}\n{done.stdout[-4000:]}\n{done.stderr[-4000:]}")
    return done.stdout


def libraries():
    return next(PREFIX.glob("lib/**/libkorvane.so")).parent


class Install(unittest.TestCase):
    def test_a_clean_prefix_that_points_nowhere_else(self):
        shutil.rmtree(PREFIX.parent, ignore_errors=True)
        run("cmake", "--install", BUILD, "--prefix", PREFIX)
        for path in PREFIX.rglob("*"):
            if path.suffix in (".cmake", ".pc", ".h", ".json") or path.name == "qmldir":
                for place in (SOURCE / "src", SOURCE / "include", BUILD / "include", BUILD / "src", BUILD / "lib"):
                    self.assertNotIn(str(place), path.read_text(), path)


def dynamic(path, tag):
    return re.findall(rf"\({tag}\).*\[(.*)\]", run("readelf", "-d", path))


def name_of(package):
    return package["name"]


class Materials(unittest.TestCase):
    def assert_is_told_apart(self, package):
        """By the Debian packages that are installed here, and the hash of a file that they brought."""
        purls = [reference["referenceLocator"] for reference in package["externalRefs"] if reference["referenceType"] == "purl"]
        self.assertTrue(purls, package["name"])
        files = []
        for purl in purls:
            name, version, architecture = re.fullmatch(r"pkg:deb/debian/([^@]+)@([^?]+)\?arch=(\w+)", purl).groups()
            version = urllib.parse.unquote(version)
            installed = run("dpkg-query", "-W", "-f", "${Version} ${Architecture}\n", name)
            self.assertIn(f"{version} {architecture}\n", installed)
            self.assertRegex(version, r"-[\w.+~]+$|dfsg")
            self.assertIn(f"Debian package {name} {version}", package["sourceInfo"])
            files += run("dpkg-query", "-L", f"{name}:{architecture}" if architecture != "all" else name).splitlines()
        (checksum,) = package["checksums"]
        hashed = re.search(r"the hash is that of ([^,]+)", package["sourceInfo"])[1]
        (path,) = {os.path.realpath(file) for file in files if os.path.basename(file) == hashed}
        self.assertEqual(checksum["checksumValue"], hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest())

    def test_every_library_that_is_linked_stands_in_the_bill_of_materials(self):
        bill = json.loads(next(PREFIX.rglob("korvane.spdx.json")).read_text())
        packages = {package["SPDXID"]: package for package in bill["packages"]}
        needs = {}
        for relation in bill["relationships"]:
            if relation["relationshipType"] == "DEPENDS_ON":
                needs.setdefault(packages[relation["spdxElementId"]]["name"], []).append(relation["relatedSpdxElement"])
        licences = (SOURCE / "docs/licences.md").read_text()
        for name in set().union(*needs.values()):
            package = packages[name]
            self.assertRegex(package["versionInfo"], r"^\d+\.\d+", name)
            self.assertIn(f"| {package['name']} | {package['licenseDeclared']} |", licences)
            self.assert_is_told_apart(package)
            if re.search(rf"\| {re.escape(name_of(package))} \|.*compiled in", licences):
                self.assertIn("\n" + name_of(package), (next(PREFIX.rglob("doc/korvane/NOTICE"))).read_text())
        shipped = [*PREFIX.glob("bin/*"), *libraries().rglob("*.so")]
        self.assertGreater(len(shipped), 4)
        for path in shipped:
            known = {reference["referenceLocator"] for part in needs[path.name.removesuffix(".so")]
                     for reference in packages[part].get("externalRefs", [])}
            linked = {name for name in dynamic(path, "NEEDED") if not name.startswith("libkorvane")}
            self.assertLessEqual(linked, known, f"{path.name} links what {bill['name']} does not list")
            self.assertTrue(all(place.startswith("$ORIGIN") for place in dynamic(path, "RUNPATH")), path)


def defences(path):
    """What the ELF file lacks of cmake/Hardening.cmake."""
    header, segments, entries, symbols = (run("readelf", "-W", option, path) for option in ("-h", "-l", "-d", "--dyn-syms"))
    code = run("objdump", "-d", "--no-show-raw-insn", path)
    landing = "endbr64" if "X86-64" in header else "paciasp|bti"
    return [what for what, found in {
        "position-independent": "Type:                              DYN" in header,
        "relro": "GNU_RELRO" in segments,
        "bind now": re.search(r"BIND_NOW|FLAGS_1.*NOW", entries),
        "no executable stack": re.search(r"GNU_STACK +(0x\w+ +){5}RW ", segments),
        "stack protector": "__stack_chk_fail" in symbols or code.count("\n") < 1000,  # the module's plug-in has no buffer
        "control-flow protection": len(re.findall(rf"\t({landing})", code)) > 3,
    }.items() if not found]


class Hardening(unittest.TestCase):
    """The installed programs and libraries, whatever build they are of; and a release build: its commands, and what they
    make, too, with KORVANE_FULL, as in install.release_build: that takes minutes."""

    def shipped(self, prefix):
        paths = [path for path in [*prefix.glob("bin/korvane-*"), *prefix.rglob("*.so")] if path.read_bytes()[:4] == b"\x7fELF"]
        self.assertGreater(len(paths), 0 if prefix != PREFIX else 6)
        return paths

    def test_what_is_installed_has_every_defence(self):
        self.assertEqual({path.name: lacks for path in self.shipped(PREFIX) if (lacks := defences(path))}, {})

    def test_nothing_looks_for_libraries_in_the_current_directory(self):
        for path in [*self.shipped(PREFIX), *BUILD.glob("lib/*.so"), *BUILD.glob("qml/**/*.so"), *BUILD.glob("bin/korvane-*")]:
            if path.is_file():
                for place in dynamic(path, "RUNPATH") + dynamic(path, "RPATH"):
                    self.assertTrue(all(entry.startswith(("/", "$ORIGIN")) for entry in place.split(":")), f"{path}: {place}")

    def test_a_release_build_checks_the_sizes_of_copies_too(self):
        release = BUILD / "outside/release"
        run("cmake", "-G", "Ninja", "-S", SOURCE, "-B", release, "-DCMAKE_BUILD_TYPE=Release", "-DKORVANE_TESTS=OFF")
        commands = [entry["command"] for entry in json.loads((release / "compile_commands.json").read_text())]
        self.assertGreater(len(commands), 100)
        for command in commands:
            self.assertRegex(command, r" -O[23s] .*-D_FORTIFY_SOURCE=[23] ")
        if "KORVANE_FULL" in os.environ:
            run("cmake", "--build", release)
            made = [*release.glob("lib/*.so"), *release.glob("bin/korvane-*"), *release.glob("qml/**/*.so")]
            self.assertEqual({path.name: lacks for path in made if (lacks := defences(path))}, {})
            checked = re.compile(r"__(?!stack)\w+_chk(@|$)", re.M)  # only where a copy's size is not known before
            self.assertTrue(any(checked.search(run("readelf", "-W", "--dyn-syms", path)) for path in made))


class Packages(unittest.TestCase):
    def test_each_package_asks_for_what_it_needs_and_no_file_is_in_two(self):
        with tempfile.TemporaryDirectory() as folder:
            run("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", folder, "-D", "CPACK_DEBIAN_COMPRESSION_TYPE=gzip")
            packages, files = {}, []
            for path in pathlib.Path(folder).glob("*.deb"):
                name = run("dpkg-deb", "-f", path, "Package").strip()
                packages[name] = run("dpkg-deb", "-f", path, "Depends")
                files += [line.split()[5] for line in run("dpkg-deb", "-c", path).splitlines() if not line.startswith("d")]
                self.assertIn(f"./usr/share/doc/{name}/copyright", files)
                self.assertIn(f"./usr/share/doc/{name}/NOTICE", files)
        self.assertEqual(len(files), len(set(files)))
        runtime, quick = "libkorvane1 (= ", "libkorvane-quick1 (= "
        expected = {"libkorvane1": ["libcurl4", "libsecret-1-0", "libssl3"], "libkorvane-dev": [runtime],
                    "libkorvane-quick1": [runtime, "libqt6quick6", "qml6-module-qtquick"],
                    "qml6-module-korvane": [quick, "libqt6qml6"],
                    "libkorvane-quick-dev": ["libkorvane-dev (= ", quick, "qt6-declarative-dev"],
                    "korvane-sandbox": [runtime, "libsqlite3-0", "libcpp-httplib"]}
        self.assertEqual(packages.keys(), expected.keys())
        for name, needs in expected.items():
            for need in needs:
                self.assertIn(need, packages[name], name)
        self.assertNotIn("libqt6", packages["libkorvane1"])


class Hosts(unittest.TestCase):
    def built(self, name, *options):
        """The example built as its own project, in a place where nothing of ours is."""
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="host-")))
        shutil.copytree(SOURCE / "examples" / name, folder / "source")
        run("cmake", "-G", "Ninja", "-S", folder / "source", "-B", folder, f"-DCMAKE_PREFIX_PATH={PREFIX}", *options)
        run("cmake", "--build", folder)
        self.assertNotIn(str(SOURCE / "include"), (folder / "build.ninja").read_text())
        return folder / name

    def reaches(self, program, *talk, fixed_iv=False, iv_url=None):
        """Starts it against a card service; each pair is what to wait for on its output, and what to answer."""
        sandbox = Sandbox()
        self.addCleanup(sandbox.stop)
        iv = [*sandbox.ask("POST", "/host/iv", {}).values()] if fixed_iv else [iv_url or sandbox.told["ivUrl"]]
        process = subprocess.Popen([program, sandbox.url, sandbox.told["key"], *iv, sandbox.ca], stdin=subprocess.PIPE, env=SCREENLESS,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, bufsize=1)
        self.addCleanup(process.communicate)
        self.addCleanup(process.terminate)
        for wanted, answer in talk:
            if not any(wanted in line for line in process.stdout):
                self.fail(f"{program} ended without {wanted!r}: {process.stderr.read()}")
            if answer:
                process.stdin.write(answer + "\n")
        return process

    def outlives(self, program, screen):
        """Whatever its own server answers for an IV."""
        for what, answer in HOSTILE_IV_ANSWERS.items():
            with self.subTest(what):
                server = IvServer(answer)
                self.addCleanup(server.stop)
                self.reaches(program, (screen, None), iv_url=server.url)

    def test_a_program_in_cpp(self):
        for static in "OFF", "ON":
            program = self.built("cpp-host", "-DKorvane_USE_STATIC_LIBS=" + static)
            self.reaches(program, ("screen: SMSExplainView", "sdk.sms.explain.button"), ("screen: EnterSMSCodeView", None))
        self.outlives(program, "screen: UhOhTryAgainView")

    def test_an_app_in_qml(self):
        for static in "OFF", "ON":
            program = self.built("quick-host", "-DKorvane_USE_STATIC_LIBS=" + static)
            self.assertEqual(any("libkorvane" in name for name in dynamic(program, "NEEDED")), static == "OFF")
            process = self.reaches(program, ("viewToShow: SMSExplainView", None))
            process.terminate()
            self.assertNotIn("qrc:", process.stderr.read())  # nothing of the QML was amiss

    def test_a_port_of_ones_own_against_its_contract(self):
        for static in "OFF", "ON":
            self.assertRegex(run(self.built("own-port", "-DKorvane_USE_STATIC_LIBS=" + static).parent / "my_queue_test"),
                             r"\[  PASSED  \] [5-9] tests")

    def test_the_controller_of_the_guides(self):
        self.reaches(BUILD / "bin/docs-controller", ("cardId: •••", None), ("viewToShow: SMSExplainView", None), fixed_iv=True)

    def test_a_program_in_c(self):
        program = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory())) / "c-host"
        flags = run("pkg-config", "--cflags", "--libs", "korvane", "libcurl", "jansson",
                    env={**os.environ, "PKG_CONFIG_PATH": str(libraries() / "pkgconfig")}).split()
        run("cc", SOURCE / "examples/c-host/main.c", "-o", program, *flags, "-pthread", f"-Wl,-rpath,{libraries()}")
        self.reaches(program, ('"view":"SMSExplainView"', None))
        self.outlives(program, '"view":"UhOhTryAgainView"')

    def test_the_module_is_imported_by_an_app_that_does_not_link_it(self):
        screen = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory())) / "tst_module.qml"
        screen.write_text("""import QtTest
import Korvane
TestCase {
    Spinner { id: spinner }
    function test_module() { verify(spinner); compare(Theme.reducedMotion, false); }
}""")
        run("/usr/lib/qt6/bin/qmltestrunner", "-input", screen, "-import", libraries() / "qt6/qml", env=SCREENLESS)


if __name__ == "__main__":
    unittest.main(verbosity=2)

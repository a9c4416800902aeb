# SPDX-License-Identifier: Apache-2.0
"""Makes the reference of the public names, and fails when one of them has no comment of its own. Then takes comments
away in a copy: the check must notice each."""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

# One of each kind that the generator treats in its own way.
TAKEN = [("Initialize.h", r"/// Sets the component up.*?\n(?=KORVANE_API bool)", "initialize"),
         ("Journey.h", r"/// Which journey\.\n", "JourneyKind"),
         ("Journey.h", r"///< digit boxes, on the screens.*?\n", "passcode"),
         ("platform/UrlSession.h", r"    /// Starts a request\..*?\n(?=    virtual std::unique)", "start"),
         ("korvane.h", r"/\*\* Uses the control of that id\. \*/\n", "korvane_journey_perform")]


def complaints(top, out):
    settings = (top / "Doxyfile").read_text() + f"\nOUTPUT_DIRECTORY = {out}\n"
    done = subprocess.run(["doxygen", "-"], input=settings, cwd=top, capture_output=True, text=True)
    return done.stderr if done.returncode else ""


def main(top, out):
    top, out = pathlib.Path(top), pathlib.Path(out)
    shutil.rmtree(out, ignore_errors=True)  # pages of names that are gone
    out.mkdir(parents=True)
    failures = complaints(top, out)
    if not failures and not (out / "index.html").exists():
        failures = "no page was made"
    installed = re.search(r"KORVANE_LINUX_HEADERS ([^)]*?) CACHE", (top / "src/platform/linux/CMakeLists.txt").read_text())[1]
    for header in installed.split():
        if f"/linux/{header}" not in (top / "Doxyfile").read_text():
            failures += f"{header} is installed and stands not in the Doxyfile\n"
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder)
        for name in ("include", "src/platform", "docs"):
            shutil.copytree(top / name, copy / name)
        shutil.copy(top / "Doxyfile", copy)
        for header, comment, name in TAKEN:
            path = copy / "include/korvane" / header
            whole = path.read_text()
            path.write_text(re.sub(comment, "\n", whole, count=1, flags=re.DOTALL))
            if path.read_text() == whole or name not in complaints(copy, copy / "reference"):
                failures += f"nobody notices when the comment of {name} goes\n"
            path.write_text(whole)
    print(failures or f"every public name has its comment; the reference is {out}/index.html")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

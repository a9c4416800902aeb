# SPDX-License-Identifier: Apache-2.0
"""Fails when a C++ file is not formatted as .clang-format says."""

import shutil
import subprocess
import sys

import tree


def main(top):
    files = tree.sources(top, "include", "src", "sandbox", "apps", "tests", "examples", "docs")
    tool = shutil.which("clang-format") or shutil.which("clang-format-14")
    check = subprocess.run([tool, "--dry-run", "--Werror", *map(str, files)], capture_output=True, text=True, cwd=top)
    print(check.stderr or f"{len(files)} files are formatted")
    return check.returncode


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))

# SPDX-License-Identifier: Apache-2.0
"""What the checks of the tree share: which files there are, and what they include."""

import pathlib
import re
import subprocess

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)


def sources(top, *folders):
    """The C++ files below the folders that the project tracks or is about to."""
    listed = subprocess.run(
        ["git", "-C", top, "ls-files", "-co", "--exclude-standard", "--", *folders],
        capture_output=True, text=True, check=True).stdout.splitlines()
    return [pathlib.Path(top, name) for name in listed if name.endswith((".h", ".cpp"))]


def includes(path):
    return INCLUDE.findall(path.read_text())

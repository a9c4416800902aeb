# SPDX-License-Identifier: Apache-2.0
"""Fails when a shared library exports other symbols than its kept list says: hosts may rely on those.

symbols.py [--accept] LIBRARY LIST [LIBRARY LIST …]; --accept writes the lists anew."""

import difflib
import pathlib
import subprocess
import sys


def exported(library):
    """As C++ writes them; what stands for our own libraries alone is marked."""
    listed = subprocess.run(["nm", "-DC", "--defined-only", "--with-symbol-versions", "--format=posix", library],
                            capture_output=True, text=True, check=True).stdout.splitlines()
    names = set()
    for line in listed:
        name, _, rest = line.partition("@@")
        if not rest:
            continue  # the versions themselves
        version, kind = rest.split()[:2]
        if kind.isupper() or kind in "uvw":  # the linker lists a local one now and then
            names.add("private " * version.endswith("_PRIVATE") + name)
    return sorted(names)


def main(arguments):
    accept = arguments[0] == "--accept"
    pairs = list(zip(*[iter(arguments[accept:])] * 2))
    differs = False
    for library, kept in pairs:
        names, path = exported(library), pathlib.Path(kept)
        if not names:
            raise SystemExit(f"{library} exports nothing")
        changes = list(difflib.unified_diff(path.read_text().splitlines(), names, kept, library, lineterm="", n=0))
        differs |= bool(changes)
        print("\n".join(changes) or f"{library}: {len(names)} symbols, as listed")
        if accept:
            path.write_text("\n".join(names) + "\n")
    if differs and not accept:
        print("\nWhat goes away or changes breaks hosts that are built already: raise the major version for it, and for what is\n"
              "new the minor one. Then accept the lists:\n    python3 tests/project/symbols.py --accept " + " ".join(sum(pairs, ())))
    return differs and not accept


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

# SPDX-License-Identifier: Apache-2.0
"""Fails when the core library needs a symbol of Qt, curl, GLib, libsecret, D-Bus or SQLite."""

import re
import subprocess
import sys

FOREIGN = re.compile(r"^(curl_|g_[a-z]|secret_|dbus_|sqlite3_|_ZN?K?(\d+)?Q[A-Z]|_ZN?K?\d+Q[A-Za-z]|SSL_)")


def undefined(library):
    lines = subprocess.run(["nm", "--undefined-only", library], capture_output=True, text=True, check=True).stdout
    return {line.split()[-1] for line in lines.splitlines() if " U " in line}


def main(library):
    needed = undefined(library)
    foreign = sorted(symbol for symbol in needed if FOREIGN.match(symbol))
    for symbol in foreign:
        print("the core needs", symbol)
    # libcrypto is what it does need: an empty list would mean that nothing was read.
    if not any(symbol.startswith("EVP_") for symbol in needed):
        print("no symbol of libcrypto was found: is this the core library?")
        return 1
    print(f"{len(needed)} undefined symbols, {len(foreign)} of them foreign")
    return 1 if foreign else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))

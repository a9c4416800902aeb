# SPDX-License-Identifier: Apache-2.0
"""Fails when a folder of the core includes one above it, when files include each other in a circle, or when the
core or a public header includes something of a toolkit or a device library."""

import pathlib
import sys

import tree

# From the lowest up. platform/ stands for the ports; its adapters are no part of the core.
LAYERS = ["base", "platform", "sdk", "transport", "custody", "operations", "uikit", "flows"]
OUTSIDE = ("platform/linux/", "platform/qt/", "platform/fakes/", "uikit/quick/", "capi/")
# Setting up is where the layers meet.
MAY_REACH_UP = {"sdk/Initialize.cpp": {"custody", "transport"}}
FOREIGN = ("Q", "qt", "curl/", "glib", "gio/", "libsecret/", "dbus/")
PUBLIC_FOREIGN = FOREIGN + ("openssl/", "rapidjson/", "gmock/")


def circles(edges):
    """Circles of includes, each as the list of files on it."""
    state, found = {}, []

    def visit(file, path):
        state[file] = "open"
        for other in edges.get(file, ()):
            if state.get(other) == "open":
                found.append(path[path.index(other):] + [other] if other in path else [file, other])
            elif other not in state:
                visit(other, path + [other])
        state[file] = "done"

    for file in edges:
        if file not in state:
            visit(file, [file])
    return found


def main(top):
    source = pathlib.Path(top, "src")
    faults, edges = [], {}
    for path in tree.sources(top, "src"):
        name = path.relative_to(source).as_posix()
        if name.startswith(OUTSIDE):
            continue
        folder = name.split("/")[0]
        edges[name] = [other for other in tree.includes(path) if (source / other).exists()]
        for other in tree.includes(path):
            if other.startswith(FOREIGN):
                faults.append(f"{name} includes {other}, which the core must not need")
            if other.startswith(OUTSIDE):
                faults.append(f"{name} includes {other}, which is no part of the core")
        for other in edges[name]:
            above = other.split("/")[0]
            if LAYERS.index(above) > LAYERS.index(folder) and above not in MAY_REACH_UP.get(name, ()):
                faults.append(f"{name} includes {other}, from a higher folder")
    for path in tree.sources(top, "include"):
        for other in tree.includes(path):
            if other.startswith(PUBLIC_FOREIGN) or (other.startswith("gtest/") and path.parent.name != "contracts"):
                faults.append(f"{path.relative_to(top)} includes {other}: public headers need the standard library alone")
    faults += ["a circle of includes: " + " -> ".join(circle) for circle in circles(edges)]
    print("\n".join(faults) or f"{len(edges)} files of the core stand in their layers")
    if len(edges) < 20:
        faults.append("too few files were found: is this the project's folder?")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))

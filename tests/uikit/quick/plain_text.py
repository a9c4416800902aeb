# SPDX-License-Identifier: Apache-2.0
"""Every text of the QML is plain text and wraps inside words: names and disclosures come from the card service, and a
text in any other format opens what its markup names.

usage: plain_text.py ROOT
"""
import pathlib
import re
import sys

WANTED = {"textFormat": {"Text.PlainText"}, "wrapMode": {"Text.Wrap"}}
# Types of QtQuick and QtQuick.Controls or .Templates that draw a text by themselves.
DRAWS = r"(?:\w+\.)?(?:Text|TextEdit|TextInput|TextField|TextArea|Label)"


def without_comments(source):
    """Comments and the content of strings blanked, so that braces count."""
    return re.sub(r'"(?:\\.|[^"\\\n])*"|//[^\n]*|/\*.*?\*/', lambda found: '""' if found[0][0] == '"' else "", source, flags=re.S)


def own_lines(source, at):
    """What stands in the braces that open at `at`, without nested ones."""
    depth, own = 0, ""
    for sign in source[at:]:
        depth += (sign == "{") - (sign == "}")
        if depth == 0:
            return own
        own += sign if depth == 1 else ""
    raise SystemExit("braces do not match")


def faults(name, source):
    """Each text of a QML file that is not plain or does not wrap."""
    source, found = without_comments(source), []
    for text in re.finditer(rf"(?:^|[\s:]){DRAWS}\s*(?:on\s+\w+\s*)?(\{{)", source):
        own = own_lines(source, text.start(1))
        line = source.count("\n", 0, text.start(1)) + 1
        for key, values in WANTED.items():
            value = re.search(rf"(?m)(?:^|[;{{])\s*{key}:\s*([^\s;}}]+)", own)
            if not value or value[1] not in values:
                found.append(f"{name}:{line}: {key} is {value[1] if value else 'not set'}")
    # A use of a shared component, a binding or a script may not change it either.
    for key, values in WANTED.items():
        for value in re.finditer(rf"\b{key}\s*[:=]\s*([^\s;}}]+)", source):
            if value[1] not in values:
                found.append(f"{name}: {key} is set to {value[1]}")
    return found


def texts(source):
    return len(re.findall(rf"(?:^|[\s:]){DRAWS}\s*\{{", without_comments(source)))


good = "Item {\n Text { textFormat: Text.PlainText; wrapMode: Text.Wrap }\n}"
bad = ["Text { wrapMode: Text.Wrap }", "Item { Text {\n textFormat: Text.RichText\n wrapMode: Text.Wrap } }",
       "Item { contentItem: T.Label { wrapMode: Text.Wrap; Item { textFormat: Text.PlainText } } }",
       "Text {\n // textFormat: Text.PlainText\n wrapMode: Text.Wrap }", "PageTitle { textFormat: Text.StyledText }",
       "Text { textFormat: Text.PlainText\n wrapMode: Text.WordWrap }", "Text { textFormat: Text.PlainText }",
       good.replace("}\n}", "}\n TextEdit { }\n}")]
assert faults("good", good) == [] and all(faults("bad", each) for each in bad), "this test sees nothing"

files = sorted((pathlib.Path(sys.argv[1]) / "src/uikit/quick").rglob("*.qml"))
all_faults = [fault for file in files for fault in faults(file.name, file.read_text())]
count = sum(texts(file.read_text()) for file in files)
print(f"{count} texts in {len(files)} files, {len(all_faults)} faults", *all_faults, sep="\n")
sys.exit(bool(all_faults) or count < 15)

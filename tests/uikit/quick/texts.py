# SPDX-License-Identifier: Apache-2.0
"""Every text that the screens name is there in every language, and keeps its placeholders.

usage: texts.py ROOT
"""
import pathlib
import re
import sys
import xml.etree.ElementTree as xml

root = pathlib.Path(sys.argv[1])
LANGUAGES = [file.stem.removeprefix("korvane_") for file in (root / "src/uikit/quick/i18n").iterdir()]
source = "\n".join(file.read_text() for file in (root / "src").rglob("*") if file.suffix in (".cpp", ".h", ".qml"))
used = set(re.findall(r'"((?:sdk|errors|enrollment)\.[A-Za-z0-9.]*\w)"', source))  # others are put together at run time
faults = []


def read(language):
    texts = {}
    for message in xml.parse(root / f"src/uikit/quick/i18n/korvane_{language}.ts").iter("message"):
        key, text = message.get("id"), message.findtext("translation") or ""
        if not text.strip() or text != text.strip():
            faults.append(f"{language} {key}: empty, or blanks around it")
        texts[key] = text
    return texts


def placeholders(text):
    return sorted(re.findall(r"%\w+", text))


english = read("en")
faults += [f"{key}: no English text" for key in sorted(used - english.keys())]
for language in LANGUAGES:
    texts = read(language)
    faults += [f"{language} {key}: missing or not in English" for key in sorted(english.keys() ^ texts.keys())]
    faults += [
        f"{language} {key}: other placeholders than in English"
        for key, text in texts.items()
        if placeholders(text) != placeholders(english.get(key, text))
    ]

print(f"{len(english)} texts in {len(LANGUAGES)} languages, {len(faults)} faults", *faults, sep="\n")
sys.exit(bool(faults) or len(used) < 50)

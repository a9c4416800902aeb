# SPDX-License-Identifier: Apache-2.0
"""Every text that the screens name is there in every language, is in use, and keeps its placeholders and typography.

usage: texts.py ROOT
"""
import pathlib
import re
import sys
import xml.etree.ElementTree as xml

LANGUAGES = ["ar", "de", "en", "es", "fr"]
WRONG_SIGNS = {  # by language: what its typography never has
    "": r"['\"]|\.\.\.|\s\s",
    "es": r"^[^¿]*\?|^[^¡]*!",
    "fr": "(?<![\u00a0\u202f])[?!:;]",
    "ar": "[?,;]|[٠-٩۰-۹]",
}

root = pathlib.Path(sys.argv[1])
source = "\n".join(file.read_text() for file in (root / "src").rglob("*") if file.suffix in (".cpp", ".h", ".qml"))
used = set(re.findall(r'"((?:sdk|errors|enrollment)\.[A-Za-z0-9.]+)"', source))
prefixes = {key for key in used if key.endswith(".")}  # the rest of such a key is put together at run time
faults = []


def read(language):
    tree = xml.parse(root / f"src/uikit/quick/i18n/korvane_{language}.ts")
    if tree.getroot().get("language") != language:
        faults.append(f"{language}: the file says another language")
    texts = {}
    for message in tree.iter("message"):
        key, text = message.get("id"), message.findtext("translation") or ""
        if key in texts:
            faults.append(f"{language} {key}: there twice")
        if not text.strip() or text != text.strip():
            faults.append(f"{language} {key}: empty, or blanks around it")
        for scope in ("", language):
            if re.search(WRONG_SIGNS.get(scope, "(?!)"), text):
                faults.append(f"{language} {key}: a sign that the language does not write so: {text}")
        texts[key] = text
    return texts


def placeholders(text):
    return sorted(re.findall(r"%\w+", text))


english = read("en")
faults += [f"{key}: no English text" for key in sorted(used - prefixes - english.keys())]
faults += [
    f"{key}: nobody uses it"
    for key in sorted(english.keys() - used)
    if not any(key.startswith(prefix) for prefix in prefixes)
]
for key, count in {"sdk.sms.code.resendIn": 1, "sdk.accessibility.passcode": 3}.items():
    if placeholders(english.get(key, "")) != [f"%{n}" for n in range(1, count + 1)]:
        faults.append(f"{key}: its placeholders are not %1 to %{count}")
for language in LANGUAGES:
    texts = read(language)
    faults += [f"{language} {key}: missing or not in English" for key in sorted(english.keys() ^ texts.keys())]
    faults += [
        f"{language} {key}: other placeholders than in English"
        for key, text in texts.items()
        if placeholders(text) != placeholders(english.get(key, text))
    ]
if {file.stem for file in (root / "src/uikit/quick/i18n").iterdir()} != {f"korvane_{code}" for code in LANGUAGES}:
    faults.append("the folder holds other languages than this test reads")

print(f"{len(english)} texts in {len(LANGUAGES)} languages, {len(faults)} faults", *faults, sep="\n")
sys.exit(bool(faults) or len(used) < 50)

# SPDX-License-Identifier: Apache-2.0
"""Every text that the screens name is there in English, is in use, and keeps its placeholders.

usage: texts.py ROOT
"""
import pathlib
import re
import sys
import xml.etree.ElementTree as xml

root = pathlib.Path(sys.argv[1])
source = "\n".join(file.read_text() for file in (root / "src").rglob("*") if file.suffix in (".cpp", ".h"))
used = set(re.findall(r'"((?:sdk|errors|enrollment)\.[A-Za-z0-9.]+)"', source))
prefixes = {key for key in used if key.endswith(".")}  # the rest of such a key is put together at run time

texts = {}
faults = []
for message in xml.parse(root / "src/uikit/quick/i18n/korvane_en.ts").iter("message"):
    key, text = message.get("id"), message.findtext("translation") or ""
    if key in texts:
        faults.append(f"{key}: there twice")
    if not text.strip() or text != text.strip():
        faults.append(f"{key}: empty, or blanks around it")
    texts[key] = text

faults += [f"{key}: no English text" for key in sorted(used - prefixes - texts.keys())]
faults += [
    f"{key}: nobody uses it"
    for key in sorted(texts.keys() - used)
    if not any(key.startswith(prefix) for prefix in prefixes)
]
for key, count in {"sdk.sms.code.resendIn": 1, "sdk.accessibility.passcode": 3}.items():
    if re.findall(r"%\d", texts.get(key, "")) != [f"%{n}" for n in range(1, count + 1)]:
        faults.append(f"{key}: its placeholders are not %1 to %{count} in order")

print(f"{len(texts)} texts, {len(faults)} faults", *faults, sep="\n")
sys.exit(bool(faults) or len(used) < 50)

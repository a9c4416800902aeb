#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Draws every screen in every look, language and size, and one page that shows them side by side.

usage: gallery.py PROGRAMS DIR [--jobs N]    pictures and index.html in DIR; differences from DIR/accepted, if any
       gallery.py --accept DIR               what DIR shows now is what the next one is compared with
"""

import argparse
import collections
import concurrent.futures
import html
import os
import pathlib
import shutil
import subprocess
import sys

from PIL import Image, ImageChops

PALETTES = ("default", "dark", "brand")
LANGUAGES = ("en", "es", "fr", "de", "ar")
SIZES = ("320x568", "390x844", "1280x800")
NOTABLE = 0.005  # of the pixels: a turning wheel and a countdown are below it; the code of the SMS is told each time


def draw(programs, folder, palette, language):
    """Plays all journeys in one look and language; what it said when it stopped, or nothing."""
    target = folder / palette / language
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "QT_QUICK_BACKEND": "software"}
    command = [programs / "korvane-demo", "--tour", target, "--palette", palette, "--language", language]
    shutil.rmtree(target, ignore_errors=True)
    run = subprocess.run(command, env=environment, capture_output=True, text=True)
    print(f"{palette:8} {language}  {len(list(target.rglob('*.png')))} pictures", flush=True)
    return "" if run.returncode == 0 else f"{palette} {language}: {run.stderr.strip().splitlines()[-1:]}"


def pictures(folder):
    """The pictures by screen, as (screen, size, palette, language) → path."""
    found = collections.defaultdict(dict)
    for palette in PALETTES:
        for language in LANGUAGES:
            for size in SIZES:
                for path in sorted((folder / palette / language / size).glob("*.png")):
                    found[path.stem][size, palette, language] = path
    return found


def share_of_changed_pixels(one, other):
    old, new = Image.open(one).convert("RGB"), Image.open(other).convert("RGB")
    if old.size != new.size:
        return 1.0
    changed = ImageChops.difference(old, new).convert("L").point(lambda level: 255 if level > 16 else 0)
    return changed.histogram()[255] / (old.width * old.height)


def differences(folder, accepted):
    """Lines that tell, screen by screen, what is not as it was accepted."""
    before, now = pictures(accepted), pictures(folder)
    lines = [f"{screen}: gone" for screen in before if screen not in now]
    for screen, shown in now.items():
        shares = {place: share_of_changed_pixels(before[screen][place], path) if place in before.get(screen, {}) else 1.0
                  for place, path in shown.items()}
        changed = {place: share for place, share in shares.items() if share > NOTABLE}
        if changed:
            place = max(changed, key=changed.get)
            lines.append(f"{screen}: {len(changed)} of {len(shown)} differ, most of all {' '.join(place)} "
                         f"({changed[place]:.0%})" if screen in before else f"{screen}: new")
    return lines


def page(folder, notes):
    """One section a screen, one table a size: palettes down, languages across."""
    parts = ["<!doctype html><meta charset=utf-8><title>Gallery</title><style>body{font:14px sans-serif;background:#ddd}"
             "img{height:360px;margin:3px;vertical-align:top}section:not(:target) .more{display:none}</style>"
             "<h1>Every screen, look, language and size</h1>"]
    parts += [f"<p>{html.escape(note)}" for note in notes]
    for screen, shown in pictures(folder).items():
        parts.append(f"<section id='{screen}'><h2><a href='#{screen}'>{screen}</a></h2>")
        for size in SIZES:
            parts.append(f"<div{'' if size == SIZES[1] else ' class=more'}><h3>{size}</h3>")
            for palette in PALETTES:
                row = [f"<img loading=lazy title='{palette} {language}' src='{shown[size, palette, language].relative_to(folder)}'>"
                       for language in LANGUAGES if (size, palette, language) in shown]
                parts.append("<div>" + "".join(row) + "</div>")
            parts.append("</div>")
        parts.append("</section>")
    (folder / "index.html").write_text("\n".join(parts))


def accept(folder):
    accepted = folder / "accepted"
    shutil.rmtree(accepted, ignore_errors=True)
    for palette in PALETTES:
        shutil.copytree(folder / palette, accepted / palette)
    print(f"accepted: {sum(len(shown) for shown in pictures(accepted).values())} pictures")


def main():
    options = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1])
    options.add_argument("--accept", type=pathlib.Path, metavar="DIR")
    options.add_argument("--jobs", type=int, default=2 * (os.cpu_count() or 1), help="tours at a time; they mostly wait")
    options.add_argument("programs", nargs="?", type=pathlib.Path)
    options.add_argument("folder", nargs="?", type=pathlib.Path)
    given = options.parse_args()
    if given.accept:
        return accept(given.accept)
    if not given.folder:
        options.error("where are the programs, and where do the pictures go?")
    with concurrent.futures.ThreadPoolExecutor(given.jobs) as pool:
        tours = [pool.submit(draw, given.programs, given.folder, palette, language)
                 for palette in PALETTES for language in LANGUAGES]
        notes = [tour.result() for tour in tours if tour.result()]
    failed = len(notes)
    if (given.folder / "accepted").is_dir():
        notes += differences(given.folder, given.folder / "accepted") or ["Nothing differs from the accepted pictures."]
    page(given.folder, notes)
    print("\n".join([*notes, f"{given.folder / 'index.html'} shows {sum(len(s) for s in pictures(given.folder).values())} pictures"]))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

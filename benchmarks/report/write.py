# SPDX-License-Identifier: Apache-2.0
"""The results as a Markdown table, JSON and a chart."""

import html
import json
import math
import re


def number(value):
    return f"{value:.0f}" if abs(value) >= 100 else f"{value:.1f}" if abs(value) >= 10 else f"{value:.2f}"


def verdict(row):
    return {True: "met", False: "**not met**", None: ""}[row.met]


def table(rows):
    lines = ["| Work | Against | Ratio | Middle half | Goal | | Medians |", "|---|---|--:|--:|--:|---|---|"]
    for row in rows:
        low, high = row.spread
        spread = f"{number(low)} – {number(high)}" if len(row.ratios) > 1 else ""
        lines.append(f"| {row.work} | {row.against} | {number(row.result)} | {spread} | {row.goal} | {verdict(row)} "
                     f"| {row.absolute} |")
    return "\n".join(lines) + "\n"


def machine_lines(machine):
    return "".join(f"- {name}: {value}\n" for name, value in machine.items())


def as_json(rows, machine, values):
    described = [{"work": row.work, "against": row.against, "ratio": row.result, "middle_half": row.spread,
                  "goal": row.goal, "met": row.met, "rounds": row.ratios} for row in rows]
    return json.dumps({"machine": machine, "rows": described, "samples": values}, indent=1, ensure_ascii=False) + "\n"


def chart(rows):
    """A bar a row: how much of its goal it takes up, on a logarithmic scale; left of the line the goal is met."""
    shown = [row for row in rows if row.goal and row.limit > 0]
    step, left, width, top = 26, 470, 380, 56
    height = top + step * len(shown) + 24

    def place(share):  # a quarter of the goal at the left end, four times it at the right
        return left + width * (min(max(math.log(share, 4), -1), 1) + 1) / 2

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {left + width + 90} {height}" '
           'font-family="sans-serif" font-size="12">',
           '<style>text{fill:#24292f}.g{stroke:#8c959f;stroke-dasharray:3 3}.s{stroke:#24292f;stroke-width:2}'
           '@media(prefers-color-scheme:dark){text{fill:#d0d7de}.s{stroke:#d0d7de}}</style>',
           '<text x="8" y="20" font-size="15" font-weight="bold">How much of its goal each measurement takes up</text>',
           f'<text x="{place(0.5)}" y="44" text-anchor="middle">half</text>',
           f'<text x="{place(1)}" y="44" text-anchor="middle" font-weight="bold">goal</text>',
           f'<text x="{place(2)}" y="44" text-anchor="middle">twice</text>']
    for share in (0.5, 1, 2):
        out.append(f'<line class="g" x1="{place(share):.1f}" y1="{top - 6}" x2="{place(share):.1f}" y2="{height - 20}"/>')
    for index, row in enumerate(shown):
        y = top + step * index
        turned = row.goal.startswith("≥")
        share, low, high = ((row.limit / value if turned else value / row.limit) if value > 0 else 0.25
                            for value in (row.result, *row.spread))
        colour = "#1a7f37" if row.met else "#cf222e"
        label = row.work if len(row.work) < 74 else row.work[:72] + "…"
        out += [f'<text x="{left - 8}" y="{y + 14}" text-anchor="end">{html.escape(label)}</text>',
                f'<rect x="{left}" y="{y + 3}" width="{max(place(share) - left, 2):.1f}" height="15" rx="2" '
                f'fill="{colour}"/>',
                f'<line class="s" x1="{place(low):.1f}" y1="{y + 10}" x2="{place(high):.1f}" y2="{y + 10}"/>',
                f'<text x="{left + width + 8}" y="{y + 14}">{number(row.result)} ({html.escape(row.goal)})</text>']
    return "\n".join(out) + "\n</svg>\n"


def into_document(document, **parts):
    """Replaces what stands between `<!-- begin NAME -->` and `<!-- end NAME -->`."""
    text = document.read_text()
    for name, part in parts.items():
        pattern = rf"(<!-- begin {name} -->\n).*?(<!-- end {name} -->)"
        text, count = re.subn(pattern, lambda found, part=part: found.group(1) + part + found.group(2), text,
                              flags=re.DOTALL)
        assert count == 1, f"{document} has no place for {name}"
    document.write_text(text)

# SPDX-License-Identifier: Apache-2.0
"""Measures everything and tells of it; ./bench calls it with the folder of the build."""

import argparse
import pathlib
import time

import measure
import rows
import write

top = pathlib.Path(__file__).resolve().parents[2]

arguments = argparse.ArgumentParser(prog="bench")
arguments.add_argument("build", type=pathlib.Path)
arguments.add_argument("--quick", action="store_true")
arguments.add_argument("--write-docs", action="store_true")
given = arguments.parse_args()

begin = time.monotonic()
build = given.build.resolve()
machine = measure.machine(build)
measurements = measure.Measurements(build, measure.Sizes(given.quick))
measurements.all()
results = rows.rows(measurements.values)

folder = build / "results"
folder.mkdir(exist_ok=True)
table = write.table(results)
(folder / "results.md").write_text(table + "\n" + write.machine_lines(machine))
(folder / "results.json").write_text(write.as_json(results, machine, measurements.values))
(folder / "results.svg").write_text(write.chart(results))
if given.write_docs:
    write.into_document(top / "docs/performance.md", table=table, machine=write.machine_lines(machine))
    (top / "docs/images/performance.svg").write_text(write.chart(results))

print("\n" + table)
goals = [row for row in results if row.met is not None]
print(f"{sum(row.met for row in goals)} of {len(goals)} goals are met. It took {time.monotonic() - begin:.0f} s.")
print(f"The table, every sample as JSON, and the chart are in {folder.relative_to(top) if folder.is_relative_to(top) else folder}.")
if given.quick:
    print("This was a short run: its figures say that everything works, and little more.")

# SPDX-License-Identifier: Apache-2.0
"""Runs the measuring programs. What is compared with each other is run by turns, so that whatever else the machine
does hits both sides alike."""

import json
import os
import pathlib
import re
import subprocess
import sys
import time


class Sizes:
    """How often each thing is measured."""

    def __init__(self, quick):
        self.rounds = 3 if quick else 15
        self.calls = 200 if quick else 2000
        self.repetitions = 3 if quick else 11
        self.seconds = 0.01 if quick else 0.05
        self.journeys = 60 if quick else 1000


def run(command, **kwargs):
    """Standard output and error of a program that must end well."""
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=420, **kwargs)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} ended with {done.returncode}:\n{done.stderr[-2000:]}")
    return done.stdout, done.stderr


class Measurements:
    """Samples by name: `values[name][key]` lists one value a round."""

    def __init__(self, build, sizes):
        self.bin = build / "bin"
        self.build = build
        self.sizes = sizes
        self.values = {}

    def add(self, name, **values):
        for key, value in values.items():
            self.values.setdefault(name, {}).setdefault(key, []).append(value)

    def add_lines(self, text):
        for line in text.splitlines():
            sample = json.loads(line)
            name = sample.pop("name")
            sample.pop("round")
            self.add(name, **sample)

    def all(self):
        parts = [self.own_work, self.operations, self.round_trips, self.first_frames, self.start, self.journeys,
                 self.library]
        for number, part in enumerate(parts, 1):
            print(f"[{number}/{len(parts)}] {part.__doc__}", flush=True)
            part()

    def own_work(self):
        """Ciphers, request bodies, card pictures"""
        out = self.build / "own-work.json"
        run([self.bin / "korvane-bench", "--benchmark_enable_random_interleaving=true",
             f"--benchmark_repetitions={self.sizes.repetitions}", f"--benchmark_min_time={self.sizes.seconds}",
             f"--benchmark_out={out}", "--benchmark_out_format=json"])
        for each in sorted(json.loads(out.read_text())["benchmarks"], key=lambda b: b.get("repetition_index", 0)):
            if each["run_type"] != "iteration":
                continue
            if each.get("error_occurred"):
                sys.exit(f"{each['name']}: {each['error_message']}")
            assert each["time_unit"] == "ns"
            name = re.sub(r"/(repeats|min_time|iterations):[^/]*", "", each["name"])
            extra = {key: each[key] for key in ("peak_over_reply",) if key in each}
            self.add(name, ns=each["cpu_time"], **extra)

    def operations(self):
        """Whole operations over loopback"""
        self.add_lines(run([self.bin / "korvane-bench-operation", self.sizes.rounds, self.sizes.calls])[0])

    def round_trips(self):
        """A journey's first decision at 100 ms"""
        for number in range(self.sizes.rounds):
            for mode in ("cold", "prepared", "preparing"):
                self.add_lines(run([self.bin / "korvane-bench-round-trips", number, mode])[0])

    def first_frames(self):
        """From answer to frame"""
        for number in range(self.sizes.rounds):
            self.add_lines(run([self.bin / "korvane-bench-frame", number])[0])

    def start(self):
        """The demo's start, and a bare window's"""
        probe = self.build / "lib/libkorvane_bench_start_probe.so"
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen", QT_QUICK_BACKEND="software", LD_PRELOAD=str(probe))
        # Its own card service stands in another process, as a bank's does.
        service = subprocess.Popen([str(self.bin / "korvane-sandbox"), "--http"], stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, text=True)
        try:
            ready = json.loads(service.stdout.readline())
            demo = [self.bin / "korvane-demo", "--service", ready["url"], "--key", ready["key"]]
            for number in range(self.sizes.rounds + 1):
                for name, command in (("start/bare", [self.bin / "korvane-bench-bare"]), ("start/demo", demo)):
                    now = time.clock_gettime_ns(time.CLOCK_MONOTONIC)
                    told = run(command, env=dict(env, KORVANE_BENCH_START=str(now)))[1]
                    found = re.search(r"^first-frame (.*)$", told, re.MULTILINE)
                    if not found:
                        sys.exit(f"{name} told nothing of its first frame:\n{told[-2000:]}")
                    if number > 0:  # the first one brings the files into memory
                        self.add(name, **json.loads(found.group(1)))
        finally:
            service.terminate()
            service.wait()

    def journeys(self):
        """Many journeys in one process"""
        self.add_lines(run([self.bin / "korvane-bench-journeys", self.sizes.journeys])[0])

    def library(self):
        """Core's shared library"""
        core = (self.build / "lib/libkorvane-core.so").resolve()
        empty = self.build / "lib/libkorvane_bench_empty.so"
        stripped = self.build / "libkorvane-core.stripped.so"
        run(["strip", "-o", stripped, core])
        self.add("library/core", bytes=stripped.stat().st_size, functions=functions_at_load(core))
        self.add("library/empty", functions=functions_at_load(empty))
        for number in range(self.sizes.rounds):
            for name, file in (("empty", empty), ("core", stripped)):
                self.add_lines(run([self.bin / "korvane-bench-load", number, name, file])[0])


def functions_at_load(library):
    """The functions that the loader runs: entries of .init_array (System V ABI, 5)."""
    sections = run(["readelf", "-SW", library])[0]
    found = re.search(r"\.init_array\s+INIT_ARRAY\s+\S+\s+\S+\s+([0-9a-f]+)", sections)
    return int(found.group(1), 16) // 8 if found else 0


def machine(build):
    """What the figures were taken on."""
    def first(pattern, text):
        found = re.search(pattern, text, re.MULTILINE)
        return found.group(1).strip() if found else "?"

    def version(package):
        return subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], capture_output=True, text=True).stdout

    cpu = pathlib.Path("/proc/cpuinfo").read_text()
    vector = [flag for flag in ("avx2", "avx512f", "vaes", "asimd") if re.search(rf"\b{flag}\b", cpu)]
    commit = subprocess.run(["git", "rev-parse", "--short", "HEAD"], capture_output=True, text=True,
                            cwd=pathlib.Path(__file__).parent).stdout.strip()
    return {
        "CPU": first(r"^model name\s*:(.*)$", cpu),
        "Cores": str(os.cpu_count()),
        "Vector units": ", ".join(vector) or "none of note",
        "Kernel": os.uname().release,
        "Compiler": run(["c++", "--version"])[0].splitlines()[0],
        "Build": first(r"^CMAKE_BUILD_TYPE:STRING=(.*)$", (build / "CMakeCache.txt").read_text()),
        "Libraries": ", ".join(f"{name} {version(package)}" for name, package in (
            ("OpenSSL", "libssl3"), ("libcurl", "libcurl4"), ("Qt", "libqt6core6"))),
        "Source": commit,
        "Load before the run": " ".join(f"{value:.2f}" for value in os.getloadavg()),
    }

# SPDX-License-Identifier: Apache-2.0
"""What is compared with what, and the goal. Each row comes to ratios, one a round; their median is the result."""

import dataclasses
import math
import statistics


@dataclasses.dataclass
class Row:
    work: str
    against: str
    goal: str          # as people read it: "≤ 1.25"
    ratios: list
    absolute: str = ""  # both sides in their own unit

    @property
    def result(self):
        return statistics.median(self.ratios)

    @property
    def spread(self):
        """The middle half of the rounds."""
        if len(self.ratios) < 4:
            return min(self.ratios), max(self.ratios)
        quarters = statistics.quantiles(self.ratios, n=4)
        return quarters[0], quarters[2]

    @property
    def limit(self):
        return float(self.goal.split()[1])

    @property
    def met(self):
        """None: the row has no goal."""
        if not self.goal:
            return None
        sign = self.goal.split()[0]
        return {"≤": self.result <= self.limit, "<": self.result < self.limit, "≥": self.result >= self.limit}[sign]


def rows(values):
    def series(name, key):
        return values[name][key]

    def over(name, base, key, scale=1.0, unit=""):
        """The ratios of one round each, and both medians."""
        ratios = [a / b for a, b in zip(series(name, key), series(base, key), strict=True)]
        medians = [statistics.median(series(each, key)) * scale for each in (name, base)]
        return ratios, f"{medians[0]:.3g} against {medians[1]:.3g} {unit}"

    def compared(work, against, goal, *what, **how):
        return Row(work, against, goal, *over(*what, **how))

    picture = "a 500 KB card picture's reply to picture bytes"
    ready, development = "a service with its answers ready", "the development card service"
    result = [
        compared("one 16-byte field enciphered, base64 included", "bare EVP, cipher fetched before", "≤ 1.25",
                 "field16/ours", "field16/evp", "ns", unit="ns"),
        compared("one request body of six fields", "six bare EVP calls", "≤ 1.35",
                 "request6/ours", "request6/evp", "ns", unit="ns"),
        compared(picture, "AES decryption of the same bytes alone", "≤ 2.1",
                 "image500k/ours", "image500k/aes_only", "ns", scale=1e-3, unit="µs"),
        compared("the usual composition of libraries", f"{picture} (times faster)", "≥ 25",
                 "image500k/usual", "image500k/ours", "ns", scale=1e-3, unit="µs"),
        compared("the same with Qt's classes", f"{picture} (times faster)", "≥ 50",
                 "image500k/qt", "image500k/ours", "ns", scale=1e-3, unit="µs"),
        picture_sizes(values),
    ]
    if peaks := [value for name in values if name.startswith("image/ours/")
                 for value in values[name].get("peak_over_reply", [])]:
        result.append(Row("peak memory for a picture, 10 KB to 16 MB", "the reply's size", "≤ 3.2", [max(peaks)]))
    for scheme in ("http", "https"):
        for service, suffix in ((development, ""), (ready, "_ready")):
            name = f"operation{suffix}_{scheme}"
            for key, limit in (("p50", 1.3), ("p99", 1.4)):
                result.append(compared(f"setting a PIN over {scheme.upper()}, {key}, {service}",
                                       "a bare libcurl handle, kept alive", "" if suffix else f"≤ {limit}",
                                       f"{name}/ours", f"{name}/bare", key, unit="µs"))
            result.append(compared(f"setting a PIN over {scheme.upper()} with QNetworkAccessManager, {service}",
                                   "the component on Qt's loop (times faster)", "" if suffix else "≥ 3",
                                   f"{name}/qt", f"{name}/ours_qt", "p50", unit="µs"))
    result += [
        compared("a journey's first decision from cold, 100 ms away", "the five round trips that it needs", "≤ 1.05",
                 "round_trips_first/ours", "round_trips_first/needed", "ms", unit="ms"),
        compared("the same after `prepare`", "one round trip", "≤ 1.05",
                 "round_trips_prepared/ours", "round_trips_prepared/needed", "ms", unit="ms"),
        compared("the same while `prepare` is at work", "the five round trips that it needs without", "≤ 1.05",
                 "round_trips_preparing/ours", "round_trips_preparing/needed", "ms", unit="ms"),
        compared("the next operation, 100 ms away", "one round trip", "≤ 1.05",
                 "round_trips_second/ours", "round_trips_second/needed", "ms", unit="ms"),
    ]
    for name in sorted(name for name in values if name.startswith("first_frame/")):
        times = series(name, "ms")
        result.append(Row(f"from the answer to the first frame of {name.split('/')[1]}, shown for the first time",
                          "one frame of 16.7 ms", "≤ 1", [ms / (1000 / 60) for ms in times],
                          f"{statistics.median(times):.3g} ms"))
    result += [
        compared("the demo's first frame, from the start of the process", "a bare window with Controls", "≤ 1.15",
                 "start/demo", "start/bare", "ms", unit="ms"),
        compared("the demo's memory at its first frame", "a bare window with Controls", "≤ 1.35",
                 "start/demo", "start/bare", "pss_kib", scale=1 / 1024, unit="MiB"),
        compared("memory after 1,000 journeys in one process", "after the tenth", "≤ 1.02",
                 "journeys_memory/late", "journeys_memory/early", "kib", scale=1 / 1024, unit="MiB"),
    ]
    size = series("library/core", "bytes")[0]
    ran = series("library/core", "functions")[0] - series("library/empty", "functions")[0]
    result += [
        Row("Core's stripped shared library", "1 KB", "< 700", [size / 1000], f"{size} bytes"),
        Row("functions that it runs when it is loaded, before any call", "an empty library", "≤ 0", [ran]),
        compared("loading it", "an empty library", "", "load/core", "load/empty", "us", unit="µs"),
    ]
    return result


def picture_sizes(values):
    """The exponent of time over size, 1 being linear, of each repetition: least squares of the logarithms."""
    units = {"k": 1e3, "m": 1e6}
    sizes = {name: float(name.split("/")[2][:-1]) * units[name[-1]] for name in values if name.startswith("image/ours/")}
    across = [math.log(size) for size in sizes.values()]
    exponents = []
    for times in zip(*(values[name]["ns"] for name in sizes), strict=True):
        up = [math.log(time) for time in times]
        exponents.append(statistics.linear_regression(across, up).slope)
    slowest, fastest = (pick(statistics.median(values[name]["ns"]) / size for name, size in sizes.items())
                        for pick in (max, min))
    return Row("time of a picture, 10 KB to 16 MB: its exponent", "size, to the power of 1 (more where caches end)", "≤ 1.15", exponents,
               f"{fastest:.2g} to {slowest:.2g} ns a byte")

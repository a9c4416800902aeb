# SPDX-License-Identifier: Apache-2.0
"""Fails when a public header does not compile by itself, as C too where it says that it can."""

import concurrent.futures
import pathlib
import subprocess
import sys

import tree


def main(top, build, compiler):
    include = pathlib.Path(top, "include")
    headers = tree.sources(top, "include")

    def compile_alone(header, language, standard):
        name = header.relative_to(include).as_posix()
        return name, subprocess.run(
            [compiler, "-std=" + standard, "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-I", str(include),
             "-I", str(pathlib.Path(build, "include")), "-x", language, "-"], input=f"#include <{name}>\n", capture_output=True, text=True)

    jobs = [(header, "c++", "c++20") for header in headers]
    jobs += [(header, "c", "c99") for header in headers if "#ifdef __cplusplus" in header.read_text()]
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        results = list(pool.map(lambda job: compile_alone(*job), jobs))
    failed = [(name, result.stderr) for name, result in results if result.returncode != 0]
    for name, message in failed:
        print(f"{name} does not compile alone:\n{message}")
    print(f"{len(headers)} public headers, {len(failed)} failed")
    return 1 if failed or not headers else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

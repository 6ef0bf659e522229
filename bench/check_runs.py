#!/usr/bin/env python3
"""check_runs.py PROGRAM: every benchmark of the program runs for a moment and tells a ratio or a time. How large they are is
not looked at."""
import json
import math
import subprocess
import sys


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def problems_of(run):
    if run.get("error_occurred"):
        yield run["error_message"]
    told = {name: value for name, value in run.items() if name.startswith("ratio ") or name == "ms"}
    if not told:
        yield "tells neither a ratio nor a time"
    for name, value in told.items():
        if not math.isfinite(value) or value <= 0:
            yield f"{name} is {value}"


def main(program):
    listed = output_of(program, "--benchmark_list_tests").split("\n")[:-1]
    document = output_of(program, "--benchmark_format=json", "--benchmark_min_time=0.0001")
    runs = json.loads(document)["benchmarks"]
    problems = [f"{run['name']}: {problem}" for run in runs for problem in problems_of(run)]
    problems += [f"{name}: did not run" for name in set(listed) - {run["name"] for run in runs}]
    if not listed:
        problems.append("the program has no benchmarks")
    print("\n".join(problems) or f"{len(runs)} benchmarks ran")
    return 1 if problems else 0


sys.exit(main(sys.argv[1]))

"""layout.py PROGRAMS: measures the search with quarter turns and its plain peer, and prints a table. Called by `layout`.

Both are compiled with the same flags and work on the same artworks. Wall time, best of several runs; the memory is the
largest peak of a process that does nothing else.
"""
import json
import math
import os
import subprocess
import sys
import tempfile

PROGRAMS = os.path.abspath(sys.argv[1])
BENCHMARKS = os.path.join(PROGRAMS, "orvex-benchmarks")
LEAST_FACTOR = {50: 3, 500: 8, 1000: 10}
STEEPEST_GROWTH = 2.2  # the exponent from 500 to 2000 artworks
LARGEST_MIB = 100      # at 2000 artworks


def milliseconds(name, count, repetitions):
    answer = subprocess.run([BENCHMARKS, "--benchmark_filter=^%s/%d/real_time$" % (name, count),
                             "--benchmark_repetitions=%d" % repetitions, "--benchmark_format=json"],
                            check=True, capture_output=True)
    runs = [run for run in json.loads(answer.stdout)["benchmarks"] if run["run_type"] == "iteration"]
    return min(run["real_time"] for run in runs)


def peak_mib(name, count):
    with tempfile.NamedTemporaryFile("r") as report:
        subprocess.run([os.path.join(PROGRAMS, "measure-process"), report.name, BENCHMARKS,
                        "--benchmark_filter=^%s/%d/real_time$" % (name, count)], check=True, capture_output=True)
        return int(report.read().split()[1]) / 1024


def met(holds):
    return "yes" if holds else "NO"


def main():
    ours = {count: milliseconds("optimizeArrangement", count, 3) for count in (50, 200, 500, 1000, 2000)}
    plain = {count: milliseconds("plainOptimizeArrangement", count, 1) for count in LEAST_FACTOR}
    row = "%-10s %12s %14s %8s  %s"
    print(row % ("artworks", "ours", "plain", "factor", "required"))
    for count, time in ours.items():
        if count not in plain:
            print(row % (count, "%.1f ms" % time, "", "", ""))
            continue
        factor = plain[count] / time
        print(row % (count, "%.1f ms" % time, "%.1f ms" % plain[count], "%.1f" % factor,
                     ">= %d: %s" % (LEAST_FACTOR[count], met(factor >= LEAST_FACTOR[count]))))
    growth = math.log(ours[2000] / ours[500]) / math.log(4)
    print("Growth from 500 to 2000: n^%.2f, required <= n^%.1f: %s" %
          (growth, STEEPEST_GROWTH, met(growth <= STEEPEST_GROWTH)))
    memory = peak_mib("optimizeArrangement", 2000)
    print("Memory at 2000: %.0f MiB, required < %d MiB: %s" % (memory, LARGEST_MIB, met(memory < LARGEST_MIB)))
    print("%d processors." % os.cpu_count())


main()

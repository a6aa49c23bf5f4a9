"""stores.py PROGRAMS FOLDER: measures loading and saving of the stores, and prints a table. Called by `stores`.

Every figure is the wall time of the step alone, in a process of its own; the memory is the peak of that process. What is
saved is synchronised to the disk, by Python as well. Programs take turns.
"""
import os
import shutil
import subprocess
import sys
import tempfile

PROGRAMS, FOLDER = (os.path.abspath(folder) for folder in sys.argv[1:3])
BENCHMARK = os.path.join(PROGRAMS, "store-benchmark")
ROUNDS = 3

MOST_QUEUE_SECONDS = 2.0
MOST_QUEUE_MIB = 1024
MOST_PRESETS_SECONDS = 1.0
MOST_JOURNAL_SECONDS = 2.0

PYTHON_LOAD = """
import json, sys, time
start = time.perf_counter()
with open(sys.argv[1], encoding="utf-8") as file:
    jobs = json.load(file)
print(time.perf_counter() - start)
assert len(jobs) == 10000
"""

PYTHON_SAVE = """
import json, os, sys, time
with open(sys.argv[1], encoding="utf-8") as file:
    jobs = json.load(file)
start = time.perf_counter()
with open(sys.argv[2], "w", encoding="utf-8") as file:
    json.dump(jobs, file, indent=4, sort_keys=True, ensure_ascii=False)
    file.flush()
    os.fsync(file.fileno())
print(time.perf_counter() - start)
"""

missed = []


class Best:
    """The shortest time and the highest peak of some runs of a command that prints its seconds."""

    def __init__(self, *command):
        self.command = command
        self.seconds = float("inf")
        self.mib = 0.0

    def run(self):
        with tempfile.NamedTemporaryFile("r") as report:
            done = subprocess.run([os.path.join(PROGRAMS, "measure-process"), report.name, *self.command],
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
            if done.returncode != 0:
                sys.exit("%s failed." % " ".join(self.command[:2]))
            self.mib = max(self.mib, int(report.read().split()[1]) / 1024)
        self.seconds = min(self.seconds, float(done.stdout))


def run_in_turns(*programs):
    for _ in range(ROUNDS):
        for program in programs:
            program.run()


def verdict(task, most, unit, figure):
    if most is None:
        return ["", ""]
    holds = figure < most
    if not holds:
        missed.append(task)
    return ["< %g %s" % (most, unit), "yes" if holds else "NO"]


def rows_of(task, most_seconds, ours, peer):
    yield ([task, "ours", "%.2f s" % ours.seconds, ""] + verdict(task, most_seconds, "s", ours.seconds))
    yield (["", "", "%.0f MiB" % ours.mib, ""] + verdict(task, MOST_QUEUE_MIB, "MiB", ours.mib))
    yield ["", "Python", "%.2f s" % peer.seconds, "%.1f" % (peer.seconds / ours.seconds), "", ""]
    yield ["", "", "%.0f MiB" % peer.mib, "%.1f" % (peer.mib / ours.mib), "", ""]


def queue_rows(name, save_step, title, most_seconds):
    folder = os.path.join(FOLDER, name)
    file, copy = os.path.join(folder, "queue.json"), os.path.join(FOLDER, "python.json")
    saving = Best(BENCHMARK, save_step, folder)
    loading = Best(BENCHMARK, "load-queue", folder)
    python_loading = Best("python3", "-c", PYTHON_LOAD, file)
    python_saving = Best("python3", "-c", PYTHON_SAVE, file, copy)
    run_in_turns(saving, loading, python_loading, python_saving)
    size = "%.0f MiB" % (os.path.getsize(file) / (1 << 20))
    os.remove(copy)
    yield from rows_of("load %s, %s" % (title, size), most_seconds, loading, python_loading)
    yield from rows_of("save %s, %s" % (title, size), most_seconds, saving, python_saving)


def presets_folder():
    """Is made once; a broken-off run leaves nothing that looks whole."""
    folder = os.path.join(FOLDER, "presets")
    if not os.path.exists(folder):
        part = folder + ".part"
        shutil.rmtree(part, ignore_errors=True)
        Best(BENCHMARK, "make-presets", part).run()
        os.rename(part, folder)
    return folder


def single_row(task, step, folder, most):
    ours = Best(BENCHMARK, step, folder)
    run_in_turns(ours)
    yield [task, "ours", "%.2f s" % ours.seconds, ""] + verdict(task, most, "s", ours.seconds)


def print_table(rows):
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def main():
    rows = [["task", "program", "figure", "ratio", "required", "met"]]
    rows.extend(queue_rows("queue", "save-queue", "10,000 jobs", MOST_QUEUE_SECONDS))
    rows.extend(queue_rows("audited-queue", "save-audited-queue", "10,000 audited jobs", None))
    rows.extend(single_row("load 200 presets with profiles of 2 MiB", "load-presets", presets_folder(),
                           MOST_PRESETS_SECONDS))
    rows.extend(single_row("append to 10,000 observations", "append-journal", os.path.join(FOLDER, "journal"),
                           MOST_JOURNAL_SECONDS))
    print_table(rows)
    print("Best time and highest peak of %d runs, files in the page cache. A ratio is Python's figure by ours. "
          "%d processors." % (ROUNDS, os.cpu_count()))
    sys.exit(1 if missed else 0)


main()

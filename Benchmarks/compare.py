"""compare.py PROGRAMS PICTURES: measures our programs and their peers, and prints a table. Called by `compare`.

A whole process is measured from its start to its end: wall time, the best of several runs that take turns with the
peer's, and the largest peak of resident memory that the kernel saw. The pictures are in the page cache, and results
are new files. fsync, fdatasync and sync_file_range do nothing on either side: how long a disk takes is no program's
speed.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field

PROGRAMS, PICTURES = (os.path.abspath(folder) for folder in sys.argv[1:3])
WORK = tempfile.mkdtemp(prefix="compare-", dir=PICTURES)
RESULTS = os.path.join(WORK, "results")
ORVEXCTL = os.path.join(PROGRAMS, "orvexctl")
ROUNDS = 3


def warm():
    """Reads the pictures, which the system may have put out of its cache since the last run."""
    for name in os.listdir(PICTURES):
        path = os.path.join(PICTURES, name)
        if os.path.isfile(path):
            with open(path, "rb") as file:
                while file.read(1 << 24):
                    pass


@dataclass
class Program:
    name: str
    command: list
    rounds: int = ROUNDS
    seconds: float = float("inf")
    peak_mib: float = 0.0

    def is_installed(self):
        return shutil.which(self.command[0]) is not None

    def run(self):
        shutil.rmtree(RESULTS, ignore_errors=True)
        os.mkdir(RESULTS)
        warm()
        report = os.path.join(WORK, "report")
        environment = dict(os.environ, LD_PRELOAD=os.path.join(PROGRAMS, "libno-sync.so"))
        done = subprocess.run([os.path.join(PROGRAMS, "measure-process"), report] + self.command, env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        if done.returncode != 0:
            sys.exit("%s failed: %s" % (" ".join(self.command), done.stderr.decode(errors="replace")))
        with open(report) as file:
            seconds, peak_kib = file.read().split()
        self.seconds = min(self.seconds, float(seconds))
        self.peak_mib = max(self.peak_mib, int(peak_kib) / 1024)


@dataclass
class Task:
    name: str
    ours: Program
    peer: Program
    largest_ratio: float         # of our time to the peer's
    largest_mib: float = None    # of our memory; the peer's own peak if None
    others: list = field(default_factory=list)  # for orientation only

    def measure(self):
        programs = [each for each in [self.ours, self.peer] + self.others if each.is_installed()]
        for turn in range(ROUNDS):
            for each in programs:
                if turn < each.rounds:
                    each.run()

    def rows(self):
        yield self.row(self.ours)
        for each in [self.peer] + self.others:
            yield self.row(each)

    def row(self, program):
        title = self.name if program is self.ours else ""
        if not program.is_installed():
            return [title, program.name, "not installed", "", "", "", ""]
        figures = [title, program.name, "%.2f s" % program.seconds, "%.0f MiB" % program.peak_mib]
        if program is not self.ours:
            return figures + ["", "", ""]
        if not self.peer.is_installed():
            return figures + ["", "", "no peer"]
        ratio = program.seconds / self.peer.seconds
        limit = self.largest_mib or self.peer.peak_mib
        verdict = "yes" if ratio <= self.largest_ratio and program.peak_mib < limit else "NO"
        return figures + ["%.2f" % ratio, "<= %.2f and < %.0f MiB" % (self.largest_ratio, limit), verdict]


def picture(name):
    return os.path.join(PICTURES, name)


def scratch(name):
    return os.path.join(WORK, name)


def result(name):
    return os.path.join(RESULTS, name)


def inspect(name):
    return Program("orvexctl inspect", [ORVEXCTL, "inspect", picture(name)])


def thumbnail(name):
    # Its own uncompressed format, so that no time goes into an encoder.
    return Program("vipsthumbnail", ["vipsthumbnail", picture(name), "--size", "2400x2400", "-o", result("thumbnail.v")])


def render(name):
    layout = scratch(name + ".json")
    subprocess.run([ORVEXCTL, "roll", picture(name), "-o", scratch("roll.pdf"), "--layout-out", layout], check=True,
                   stdout=subprocess.DEVNULL)
    return Program("orvexctl render", [ORVEXCTL, "render", layout, "-o", result("rendered.pdf")])


def convert(name):
    layout = scratch(name + ".json")
    subprocess.run([ORVEXCTL, "roll", picture(name), "-o", scratch("roll.pdf"), "--layout-out", layout], check=True,
                   stdout=subprocess.DEVNULL)
    return Program("orvexctl render", [ORVEXCTL, "render", layout, "-o", result("rendered.pdf"), "--output-icc",
                                       picture("press.icc"), "--driver-correction-off"])


def vips(name, compression, depth, rounds=ROUNDS):
    return Program("vips icc_transform, TIFF %s" % compression,
                   ["vips", "icc_transform", picture(name), result("vips.tif[compression=%s]" % compression),
                    picture("press.icc"), "--intent", "relative", "--embedded", "--depth", str(depth)], rounds)


def img2pdf(name):
    return Program("img2pdf", ["img2pdf", "--pillow-limit-break", picture(name), "-o", result("img2pdf.pdf")])


def mutool(name, rounds):
    page = scratch(name + ".page")
    with open(page, "w") as file:
        file.write("%%%%MediaBox 0 0 4320 2880\n%%%%Image Picture %s\nq 4320 0 0 2880 0 0 cm /Picture Do Q\n"
                   % picture(name))
    return Program("mutool create", ["mutool", "create", "-o", result("mutool.pdf"), page], rounds)


def tasks():
    jpeg, png, tiff = "big.jpg", "big.png", "big16.tif"
    return [
        Task("inspect JPEG 18000x12000", inspect(jpeg), thumbnail(jpeg), 0.9),
        Task("inspect PNG 18000x12000", inspect(png), thumbnail(png), 0.8, float("inf")),
        Task("render JPEG to PDF", render(jpeg), img2pdf(jpeg), 1.5, 100, [mutool(jpeg, ROUNDS)]),
        Task("render PNG to PDF", render(png), mutool(png, 1), 1 / 6, 150),
        Task("render 16-bit TIFF 12000x8000 to PDF", render(tiff), mutool(tiff, 1), 1 / 6, 200),
        Task("convert JPEG to CMYK PDF", convert(jpeg), vips(jpeg, "none", 8), 1.0, 250),
        Task("the same", convert(jpeg), vips(jpeg, "deflate", 8, 1), 1 / 8, 250),
        Task("convert 16-bit TIFF to 16-bit CMYK PDF", convert(tiff), vips(tiff, "none", 16), 1.0, 250),
    ]


def arrange_seconds():
    answer = subprocess.run([os.path.join(PROGRAMS, "orvex-benchmarks"), "--benchmark_filter=autoArrange/500$",
                             "--benchmark_format=json"], check=True, capture_output=True)
    return json.loads(answer.stdout)["benchmarks"][0]["real_time"] / 1000


def print_table(rows):
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def main():
    try:
        rows = [["task", "program", "time", "memory", "ratio", "required", "met"]]
        for task in tasks():
            print("measuring: " + task.name, file=sys.stderr, flush=True)
            task.measure()
            rows.extend(task.rows())
        seconds = arrange_seconds()
        rows.append(["autoArrange of 500 artworks", "(in process)", "%.3f s" % seconds, "", "", "< 0.5 s",
                     "yes" if seconds < 0.5 else "NO"])
        print_table(rows)
        print("Whole processes, best time of %d (slow peers once), largest peak memory; without the final fsync on both "
              "sides; files in the page cache; %d processors." % (ROUNDS, os.cpu_count()))
    finally:
        shutil.rmtree(WORK)


main()

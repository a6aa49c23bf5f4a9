"""window.py PROGRAMS FOLDER: measures the window and its start, and prints tables. Called by `window`.

Everything is measured in one run on this machine: the start of the program takes turns with that of a window which holds
nothing. fsync, fdatasync and sync_file_range do nothing: how long a disk takes is not the window's speed.
"""
import os
import shutil
import statistics
import subprocess
import sys
import tempfile

PROGRAMS, FOLDER = (os.path.abspath(folder) for folder in sys.argv[1:3])
ROUNDS = 15
MOST_SECONDS = 0.5  # of the program's start beyond the empty window's


def environment(home, **more):
    """Nothing of the user's is read or written."""
    own = {name: home for name in ("HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR")}
    return dict(os.environ, LD_PRELOAD=os.path.join(PROGRAMS, "libno-sync.so"), **own, **more)


def seconds_of(program, home):
    report = os.path.join(home, "report")
    subprocess.run([os.path.join(PROGRAMS, "measure-process"), report, os.path.join(PROGRAMS, program)],
                   env=environment(home, QT_QPA_PLATFORM="offscreen"), check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    with open(report) as file:
        return float(file.read().split()[0])


def measure_start(home):
    empty, ours = [], []
    for _ in range(ROUNDS):
        empty.append(seconds_of("empty-window", home))
        ours.append(seconds_of("window-start", home))
    empty, ours = statistics.median(empty), statistics.median(ours)
    is_met = ours - empty < MOST_SECONDS
    print("start to a painted window, median of %d: %.3f s; an empty window: %.3f s; ratio %.1f; more by %.3f s < %g s: %s"
          % (ROUNDS, ours, empty, ours / empty, ours - empty, MOST_SECONDS, "yes" if is_met else "NO"))
    return is_met


def measure_board(title, home, command=(), **more):
    print("\n" + title, flush=True)
    done = subprocess.run([*command, os.path.join(PROGRAMS, "window-benchmark"), FOLDER],
                          env=environment(home, **more), stderr=subprocess.DEVNULL)
    return done.returncode == 0


def main():
    with tempfile.TemporaryDirectory() as home:
        results = [measure_start(home)]
        for scale in "1", "2":
            results.append(measure_board("offscreen, %s pixels a point" % scale, home, QT_QPA_PLATFORM="offscreen",
                                         QT_SCALE_FACTOR=scale))
        if shutil.which("xvfb-run"):
            results.append(measure_board("Xvfb", home, ("xvfb-run", "-a", "-s", "-screen 0 1920x1200x24"),
                                         QT_QPA_PLATFORM="xcb"))
    sys.exit(0 if all(results) else 1)


main()

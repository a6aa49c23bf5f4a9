"""printers.py PROGRAMS FOLDER: measures orvexctl fingerprint and orvexctl printers, and prints a table. Called by
`printers`, in a mount and a network namespace of its own, so that nothing here meets the machine's print scheduler.

Everything is wall time of whole processes that take turns, but for the wait, which is time of the processor.
"""
import json
import os
import random
import socket
import statistics
import subprocess
import sys
import tempfile
import time

PROGRAMS, FOLDER = (os.path.abspath(folder) for folder in sys.argv[1:3])
ORVEXCTL = os.path.join(PROGRAMS, "orvexctl")
DESCRIPTION = os.path.abspath("Tests/Fixtures/Cups/wide.ppd")

MIB = 1 << 20
FINGERPRINT_ROUNDS = 5
LEAST_THROUGHPUT = 0.80    # of each peer's
LARGEST_EXTRA_MIB = 8      # for a file of 4 GiB, beyond what no file takes

QUEUES = ["Lobby", "Studio", "Workshop"]
COMMANDS = ([["/usr/bin/lpstat", "-p"], ["/usr/bin/lpstat", "-v"], ["/usr/bin/lpstat", "-W", "not-completed", "-o"]] +
            [["/usr/bin/lpoptions", "-p", queue, "-l"] for queue in QUEUES])
DISCOVERY_ROUNDS = 20
LARGEST_FACTOR = 1.5       # of the tools' own time
POLL_SECONDS = 0.02        # for each tool, whose end is seen at the next look

WAIT_SECONDS = 4
WAIT_ROUNDS = 3
LARGEST_LOAD = 0.01        # of a processor, while waiting

SCHEDULER_SETTINGS = """ServerName localhost
Listen /run/cups/cups.sock
LogLevel warn
Browsing No
BrowseLocalProtocols none
DefaultAuthType None
WebInterface No
<Location />
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order deny,allow
    Allow all
  </Limit>
</Policy>
"""

missed = []


def run(command):
    """Runs a command with the environment of the tools, and gives its output."""
    done = subprocess.run(command, env={"LC_ALL": "C", "LANG": "C"}, stdin=subprocess.DEVNULL, capture_output=True)
    if done.returncode != 0:
        sys.exit("%s failed: %s" % (" ".join(command), done.stderr.decode(errors="replace")))
    return done.stdout


def seconds(command):
    start = time.perf_counter()
    run(command)
    return time.perf_counter() - start


def verdict(task, required, holds):
    if not holds:
        missed.append(task)
    return [required, "yes" if holds else "NO"]


# Fingerprints

def big_file():
    path = os.path.join(FOLDER, "random.bin")
    if not os.path.exists(path):
        numbers = random.Random(1)
        with open(path + ".part", "wb") as file:
            for _ in range(1024):
                file.write(numbers.randbytes(MIB))
        os.rename(path + ".part", path)
    return path


def fingerprint_rows():
    path = big_file()
    ours = "orvexctl fingerprint"
    commands = {ours: [ORVEXCTL, "fingerprint", path], "sha256sum": ["sha256sum", path],
                "openssl dgst": ["openssl", "dgst", "-sha256", path]}
    answers = {name: run(command).decode() for name, command in commands.items()}  # and now the file is in the cache
    digest = answers["sha256sum"].split()[0]
    if any(digest not in answer for answer in answers.values()):
        sys.exit("The fingerprints differ.")
    best = dict.fromkeys(commands, float("inf"))
    for _ in range(FINGERPRINT_ROUNDS):
        for name, command in commands.items():
            best[name] = min(best[name], seconds(command))
    task = "fingerprint of 1 GiB"
    yield [task, ours, "%.3f s" % best[ours], "", "", ""]
    for peer in list(commands)[1:]:
        ratio = best[peer] / best[ours]
        yield ["", peer, "%.3f s" % best[peer], "%.2f" % ratio] + verdict(
            task, "throughput >= %.2f" % LEAST_THROUGHPUT, ratio >= LEAST_THROUGHPUT)


def peak_mib(path):
    with tempfile.NamedTemporaryFile("r") as report:
        run([os.path.join(PROGRAMS, "measure-process"), report.name, ORVEXCTL, "fingerprint", path])
        return int(report.read().split()[1]) / 1024


def memory_rows():
    with tempfile.NamedTemporaryFile(dir=FOLDER) as sparse:
        nothing = peak_mib(os.path.join(FOLDER, "no-such-file"))
        sparse.truncate(4096 * MIB)
        peak = peak_mib(sparse.name)
    task = "memory for a file of 4 GiB"
    yield [task, "orvexctl fingerprint", "%.1f MiB" % peak, ""] + verdict(
        task, "< %.1f + %d MiB" % (nothing, LARGEST_EXTRA_MIB), peak < nothing + LARGEST_EXTRA_MIB)


# The look at the queues

def cover(folder):
    subprocess.run(["mount", "-t", "tmpfs", "-o", "mode=0755", "tmpfs", folder], check=True)


def cover_print_system():
    """Hides the machine's scheduler with its settings, and the sockets by which network printers are found."""
    for folder in ["/etc/cups", "/var/spool/cups", "/var/cache/cups", "/var/log/cups", "/run"]:
        cover(folder)
    os.mkdir("/run/cups")


def is_answering():
    with socket.socket(socket.AF_UNIX) as client:
        return client.connect_ex("/run/cups/cups.sock") == 0


def start_scheduler():
    with open("/etc/cups/cupsd.conf", "w") as file:
        file.write(SCHEDULER_SETTINGS)
    with open("/etc/cups/cups-files.conf", "w") as file:
        file.write("SystemGroup root\n")
    scheduler = subprocess.Popen(["/usr/sbin/cupsd", "-f"], stdin=subprocess.DEVNULL)
    while not is_answering():
        if scheduler.poll() is not None:
            sys.exit("The scheduler does not run.")
        time.sleep(0.05)
    return scheduler


def add_queues():
    for queue in QUEUES:
        subprocess.run(["/usr/sbin/lpadmin", "-p", queue, "-E", "-v", "file:/dev/null", "-P", DESCRIPTION], check=True,
                       stderr=subprocess.DEVNULL)  # it warns that printer drivers are deprecated
    seen = json.loads(run([ORVEXCTL, "printers"]))
    if [queue["name"] for queue in seen] != QUEUES or not all(queue["options"] for queue in seen):
        sys.exit("The queues are not seen whole: %s" % seen)


def discovery_rows():
    tools, passes, starts = [], [], []
    for _ in range(DISCOVERY_ROUNDS):
        tools.append(sum(seconds(command) for command in COMMANDS))
        passes.append(seconds([ORVEXCTL, "printers"]))
        starts.append(seconds([ORVEXCTL, "fingerprint", "/nonexistent"]))
    task = "look at three queues"
    for name, middle in (("best", min), ("median", statistics.median)):
        tool, start = middle(tools), middle(starts)
        ours = middle(passes) - start
        limit = LARGEST_FACTOR * tool + POLL_SECONDS * len(COMMANDS)
        yield ["%s, %s" % (task, name), "orvexctl printers", "%.0f ms" % (ours * 1000), "%.2f" % (ours / tool)] + verdict(
            task, "<= %.0f ms" % (limit * 1000), ours <= limit)
        yield ["", "the %d tools alone" % len(COMMANDS), "%.0f ms" % (tool * 1000), "", "", ""]
        yield ["", "(start-up, subtracted)", "%.0f ms" % (start * 1000), "", "", ""]


# The wait

def processor_seconds(wait_seconds):
    """What all threads of a look take of the processor until its tool, which does nothing for so long, ends."""
    with tempfile.TemporaryDirectory() as folder:
        tool, report = os.path.join(folder, "lpstat"), os.path.join(folder, "report")
        with open(tool, "w") as file:
            file.write("#!/bin/sh\n/bin/sleep %d\n/bin/cat /proc/$PPID/task/*/schedstat >%s\n"
                       "echo 'lpstat: No destinations added.'\nexit 1\n" % (wait_seconds, report))
        os.chmod(tool, 0o755)
        subprocess.run(["mount", "--bind", tool, "/usr/bin/lpstat"], check=True)
        try:
            run([ORVEXCTL, "printers"])
        finally:
            subprocess.run(["umount", "/usr/bin/lpstat"], check=True)
        with open(report) as file:
            return sum(int(line.split()[0]) for line in file) / 1e9


def wait_rows():
    idle, busy = [], []
    for _ in range(WAIT_ROUNDS):
        idle.append(processor_seconds(WAIT_SECONDS))
        busy.append(processor_seconds(0))
    waiting, working = statistics.median(idle), statistics.median(busy)
    load = (waiting - working) / WAIT_SECONDS
    task = "processor while a tool takes %d s" % WAIT_SECONDS
    yield [task, "orvexctl printers", "%.1f ms" % (waiting * 1000), "%.2f %%" % (load * 100)] + verdict(
        task, "< %.0f %%" % (LARGEST_LOAD * 100), load < LARGEST_LOAD)
    yield ["", "the same, no wait", "%.1f ms" % (working * 1000), "", "", ""]


def print_table(rows):
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def main():
    rows = [["task", "program", "figure", "ratio", "required", "met"]]
    rows.extend(fingerprint_rows())
    rows.extend(memory_rows())
    cover_print_system()
    scheduler = start_scheduler()
    try:
        add_queues()
        rows.extend(discovery_rows())
    finally:
        scheduler.terminate()
        scheduler.wait()
    rows.extend(wait_rows())
    print_table(rows)
    print("Fingerprints: best of %d, files in the page cache. Queues: of %d looks, without the start-up of orvexctl, as "
          "`fingerprint` of nothing shows it. Wait: median of %d. %d processors."
          % (FINGERPRINT_ROUNDS, DISCOVERY_ROUNDS, WAIT_ROUNDS, os.cpu_count()))
    sys.exit(1 if missed else 0)


main()

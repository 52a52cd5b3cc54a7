#!/usr/bin/env python3
"""Times the whole program: run.py PROGRAM COMMANDS DATA ROUNDS

In each round, in turn: a floor (every byte of the data read and its lines counted), one thread, two threads. Prints
medians, the ratio to the floor's median, and the peak memory of a run."""
import os
import statistics
import subprocess
import sys
import time


def run(argv):
    started = time.perf_counter()
    child = subprocess.Popen(argv, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    if status != 0:
        sys.exit("failed: " + " ".join(argv))
    return time.perf_counter() - started, usage.ru_maxrss / 1024


def main():
    program, commands, data, rounds = sys.argv[1], sys.argv[2], sys.argv[3], int(sys.argv[4])
    job = [program, "run", commands, "--data", data, "--format", "json", "--no-progress", "--threads"]
    jobs = {"floor (wc -l)": ["wc", "-l", data], "1 thread": job + ["1"], "2 threads": job + ["2"]}
    times = {name: [] for name in jobs}
    memory = {}
    for _ in range(rounds):
        for name, argv in jobs.items():
            seconds, memory[name] = run(argv)
            times[name].append(seconds)
    floor = statistics.median(times["floor (wc -l)"])
    print("%-14s %9s %9s %9s %9s %10s" % ("", "min s", "median s", "max s", "x floor", "peak MiB"))
    for name, t in times.items():
        median = statistics.median(t)
        print("%-14s %9.3f %9.3f %9.3f %9.1f %10.0f" % (name, min(t), median, max(t), median / floor, memory[name]))


main()

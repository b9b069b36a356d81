#!/usr/bin/env python3
"""Distributed mining (seqlattice.dask.mine on a LocalCluster) against the
tool mining the same log in one process.

The log: CUSTOMERS customers (default 10^6) drawn with replacement, seed 17,
from the customers of ../shared/data/MSNBC_spmf31790.txt, written as PARTS
CSV files (customer,time,item; customer ids unique across the files, item
sets timed by their position) and once more as one CSV file for the tool.
Then, REPEAT times each, alternating, in fresh processes:
  cli     `seqlattice mine log.csv -o cli.model --min-support S
          --no-sequences`: wall time and peak RSS;
  dask W  seqlattice.dask.mine(parts, min_support=S, sequences=False) on a
          LocalCluster of W worker processes (W = 1, 2; 2 mining threads per
          process for W = 1, 1 for W = 2, so that every run has the 2 cores):
          wall time of the call, the driver's peak RSS, each worker's peak
          RSS, phase-1 candidates (proposed and distinct) and final patterns.
Prints medians and the targets: per-worker peak memory falls from 1 to 2
workers; with 2 workers the time is within 1.5x of the tool's.

usage: flock /tmp/seqlattice-timing.lock /usr/bin/python3 bench/dask_mine.py
       [BUILD_DIR]    (default build/release, built with `make python`)
env:   DATA_DIR (default ../shared/data), CUSTOMERS (1000000), PARTS (8),
       SUPPORT (0.01), REPEAT (3), WORK (a temporary directory)
"""

import json
import os
import pathlib
import random
import statistics
import subprocess
import sys
import tempfile
import time

REPO = pathlib.Path(__file__).resolve().parent.parent
BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else
                     REPO / "build" / "release")
DATA = pathlib.Path(os.environ.get("DATA_DIR", REPO.parent / "shared" /
                                   "data"))
CUSTOMERS = int(os.environ.get("CUSTOMERS", "1000000"))
PARTS = int(os.environ.get("PARTS", "8"))
SUPPORT = os.environ.get("SUPPORT", "0.01")
REPEAT = int(os.environ.get("REPEAT", "3"))
CLI = BUILD / "cli" / "seqlattice"
PYTHON = "/usr/bin/python3"
ENV = dict(os.environ, PYTHONPATH=str(BUILD / "python"))

# Runs in a fresh interpreter: a LocalCluster of W workers, one run.
CHILD = r"""
import json, resource, sys, time
import distributed, seqlattice, seqlattice.dask
def peak():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
if __name__ == "__main__":
    workers, support, files = int(sys.argv[1]), sys.argv[2], sys.argv[3:]
    threads = 2 // workers
    cluster = distributed.LocalCluster(
        n_workers=workers, threads_per_worker=threads, processes=True,
        host="127.0.0.1", dashboard_address=None, silence_logs=50,
        memory_limit=0)
    client = distributed.Client(cluster)
    start = time.perf_counter()
    model = seqlattice.dask.mine(files, client=client,
                                 min_support=float(support),
                                 sequences=False, threads=threads,
                                 partitions=2 * workers)
    wall = time.perf_counter() - start
    worker_peaks = sorted(client.run(peak).values())
    print(json.dumps({"wall": wall, "driver": peak(),
                      "workers": worker_peaks, **model.distributed}))
    client.close()
    cluster.close()
"""


def write_log(work: pathlib.Path) -> list:
    """The drawn customers as PARTS CSV files and one whole CSV file."""
    source = []
    with open(DATA / "MSNBC_spmf31790.txt") as spmf:
        for line in spmf:
            if line.strip() and line[0] not in "@#%":
                source.append([s.split() for s in
                               line.replace("-2", "").split("-1") if
                               s.split()])
    draw = random.Random(17)
    parts = [work / f"part{k}.csv" for k in range(PARTS)]
    outs = [open(p, "w") for p in parts]
    whole = open(work / "log.csv", "w")
    for out in outs + [whole]:
        out.write("customer,time,item\n")
    for c in range(CUSTOMERS):
        sets = source[draw.randrange(len(source))]
        text = "".join(f"{c},{t},{item}\n" for t, items in enumerate(sets)
                       for item in items)
        outs[c * PARTS // CUSTOMERS].write(text)
        whole.write(text)
    for out in outs + [whole]:
        out.close()
    return parts


def run_cli(work: pathlib.Path) -> dict:
    start = time.perf_counter()
    child = subprocess.Popen(
        [str(CLI), "mine", str(work / "log.csv"), "-o", str(work /
                                                            "cli.model"),
         "--min-support", SUPPORT, "--no-sequences"],
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    _, status, usage = os.wait4(child.pid, 0)
    wall = time.perf_counter() - start
    out = child.stdout.read()
    if status != 0:
        raise SystemExit(f"seqlattice mine failed: {child.stderr.read()}")
    patterns = int(next(line.split()[1] for line in out.splitlines()
                        if line.startswith("patterns")))
    return {"wall": wall, "peak": usage.ru_maxrss * 1024,
            "patterns": patterns}


def run_dask(workers: int, parts: list) -> dict:
    done = subprocess.run(
        [PYTHON, "-c", CHILD, str(workers), SUPPORT, *map(str, parts)],
        capture_output=True, text=True, env=ENV)
    if done.returncode != 0:
        raise SystemExit(f"dask run failed: {done.stderr}")
    return json.loads(done.stdout.strip().splitlines()[-1])


def mb(n: float) -> str:
    return f"{n / 2**20:.0f} MB"


def main() -> None:
    work = pathlib.Path(os.environ.get("WORK") or tempfile.mkdtemp())
    print(f"writing {CUSTOMERS} customers to {work} ...", flush=True)
    parts = write_log(work)
    runs = {"cli": [], 1: [], 2: []}
    for r in range(REPEAT):
        runs["cli"].append(run_cli(work))
        for workers in (1, 2):
            runs[workers].append(run_dask(workers, parts))
        print(f"round {r + 1}: cli {runs['cli'][-1]['wall']:.1f} s, "
              f"1 worker {runs[1][-1]['wall']:.1f} s, "
              f"2 workers {runs[2][-1]['wall']:.1f} s", flush=True)
    med = statistics.median
    cli_wall = med(r["wall"] for r in runs["cli"])
    print(f"\nmin support {SUPPORT}, {CUSTOMERS} customers, medians of "
          f"{REPEAT}")
    print(f"cli       {cli_wall:7.2f} s  peak {mb(med(r['peak'] for r in runs['cli']))}"
          f"  patterns {runs['cli'][0]['patterns']}")
    worker_peak = {}
    for workers in (1, 2):
        rs = runs[workers]
        wall = med(r["wall"] for r in rs)
        worker_peak[workers] = med(max(r["workers"]) for r in rs)
        print(f"dask {workers}w   {wall:7.2f} s  ({wall / cli_wall:.2f}x cli)"
              f"  driver {mb(med(r['driver'] for r in rs))}"
              f"  workers {', '.join(mb(med(r['workers'][k] for r in rs)) for k in range(workers))}"
              f"  candidates {rs[0]['candidates proposed']} proposed, "
              f"{rs[0]['candidates']} distinct  patterns {rs[0]['patterns']}")
        steps = rs[0]["seconds"]
        print("          seconds: " + ", ".join(
            f"{step} {med(r['seconds'][step] for r in rs):.2f}"
            for step in steps))
    ratio = med(r["wall"] for r in runs[2]) / cli_wall
    falls = worker_peak[2] < worker_peak[1]
    print(f"\ntarget: per-worker peak falls 1 -> 2 workers: "
          f"{mb(worker_peak[1])} -> {mb(worker_peak[2])}: "
          f"{'met' if falls else 'MISSED'}")
    print(f"target: 2 workers within 1.5x of the tool: {ratio:.2f}x: "
          f"{'met' if ratio <= 1.5 else 'MISSED'}")


if __name__ == "__main__":
    main()

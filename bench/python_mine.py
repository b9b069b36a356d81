#!/usr/bin/env python3
"""Mining a pandas DataFrame with the Python package against the tool mining
the same log written as a CSV file.

For each database of ../shared/data: the SPMF file is read into a DataFrame
(customer, time, item; one row per item occurrence) and written as a CSV
file. Then, REPEAT times each and in fresh processes:
  cli     `seqlattice mine log.csv -o log.model`: the whole run (reading,
          mining, building the lattice, saving), wall and CPU time and peak
          RSS;
  python  seqlattice.mine(frame) in a process that has loaded the frame:
          wall and CPU time of the call (hand-off + mining + lattice), its
          peak RSS, the RSS before the call and the interpreter's RSS before
          the frame was loaded.
CLI and Python runs alternate, so that both see the same load.
Prints medians and the two targets: Python time / CLI time <= 1.2, and the
Python process's peak, less the interpreter alone, <= DataFrame + CLI peak.

usage: flock /tmp/seqlattice-timing.lock /usr/bin/python3 bench/python_mine.py
       [BUILD_DIR]    (default build/release, built with `make python`)
env:   DATA_DIR (default ../shared/data), REPEAT (default 5)
"""

import json
import os
import pathlib
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
REPEAT = int(os.environ.get("REPEAT", "5"))
CLI = BUILD / "cli" / "seqlattice"
PYTHON = "/usr/bin/python3"
ENV = dict(os.environ, PYTHONPATH=str(BUILD / "python"))

# (file, minimum support): over 10^5 rows each.
DATABASES = [("BMS1_spmf.txt", "0.0008"), ("IBM_QUEST_10k.txt", "0.03")]

# Runs in a fresh interpreter: loads the frame, mines it, reports.
CHILD = r"""
import json, sys, time, pickle
def status(field):
    for line in open("/proc/self/status"):
        if line.startswith(field):
            return int(line.split()[1]) * 1024
import pandas, seqlattice
interpreter = status("VmRSS")
frame = pickle.load(open(sys.argv[1], "rb"))
before = status("VmRSS")
import resource
def cpu():
    usage = resource.getrusage(resource.RUSAGE_SELF)
    return usage.ru_utime + usage.ru_stime
started, cpu_started = time.perf_counter(), cpu()
model = seqlattice.mine(frame, min_support=float(sys.argv[2]))
seconds = time.perf_counter() - started
print(json.dumps({"seconds": seconds, "cpu": cpu() - cpu_started,
                  "peak": status("VmHWM"),
                  "before": before, "interpreter": interpreter,
                  "patterns": model.info()["patterns"],
                  "frame": int(frame.memory_usage(deep=True).sum())}))
"""


def run_cli(csv: pathlib.Path, support: str, model: pathlib.Path) -> dict:
    started = time.perf_counter()
    done = subprocess.run(
        ["/usr/bin/time", "-f", "%U %S %M", str(CLI), "mine", str(csv), "-o",
         str(model), "--min-support", support],
        capture_output=True, text=True, check=True)
    seconds = time.perf_counter() - started
    patterns = next(int(line.split()[1]) for line in done.stdout.splitlines()
                    if line.startswith("patterns"))
    user, system, peak = done.stderr.split()[-3:]
    return {"seconds": seconds, "cpu": float(user) + float(system),
            "peak": int(peak) * 1024, "patterns": patterns}


def run_python(frame_file: pathlib.Path, support: str) -> dict:
    done = subprocess.run([PYTHON, "-c", CHILD, str(frame_file), support],
                          capture_output=True, text=True, check=True,
                          env=ENV)
    return json.loads(done.stdout)


def mib(n: float) -> str:
    return f"{n / 2**20:.1f} MiB"


def median(runs: list, field: str) -> float:
    return statistics.median(run[field] for run in runs)


def main() -> int:
    sys.path.insert(0, str(BUILD / "python"))
    import seqlattice
    if not DATA.is_dir():
        print(f"python_mine: {DATA} is absent", file=sys.stderr)
        return 1
    print(f"{REPEAT} runs each; medians. Python {sys.version.split()[0]} "
          f"({PYTHON}), pandas {__import__('pandas').__version__}\n")
    with tempfile.TemporaryDirectory() as tmp:
        tmp = pathlib.Path(tmp)
        for name, support in DATABASES:
            frame = seqlattice.read_log(DATA / name)
            csv = tmp / "log.csv"
            frame.to_csv(csv, index=False)
            frame_file = tmp / "frame.pickle"
            frame.to_pickle(frame_file)
            # Alternated, so that both see the same load of a shared machine.
            cli, py = [], []
            for _ in range(REPEAT):
                cli.append(run_cli(csv, support, tmp / "log.model"))
                py.append(run_python(frame_file, support))
            assert {r["patterns"] for r in cli} == \
                {r["patterns"] for r in py}, "different models"
            cli_s, py_s = median(cli, "seconds"), median(py, "seconds")
            cli_peak = median(cli, "peak")
            py_peak, interpreter = median(py, "peak"), median(py,
                                                              "interpreter")
            before, frame_bytes = median(py, "before"), py[0]["frame"]
            budget = frame_bytes + cli_peak
            print(f"{name}  min support {support}: {len(frame)} rows, "
                  f"{cli[0]['patterns']} patterns")
            print(f"  time    cli {cli_s:.3f} s  python {py_s:.3f} s  "
                  f"ratio {py_s / cli_s:.2f} (target <= 1.2: "
                  f"{'met' if py_s <= 1.2 * cli_s else 'MISSED'})")
            print(f"          cli runs {[round(r['seconds'], 3) for r in cli]}"
                  f"  python runs {[round(r['seconds'], 3) for r in py]}")
            cli_cpu, py_cpu = median(cli, "cpu"), median(py, "cpu")
            print(f"  cpu     cli {cli_cpu:.3f} s  python {py_cpu:.3f} s  "
                  f"ratio {py_cpu / cli_cpu:.2f} (user + system; the steadier "
                  "figure on a shared machine)")
            print(f"  memory  cli peak {mib(cli_peak)}; python peak "
                  f"{mib(py_peak)} = interpreter {mib(interpreter)} + frame "
                  f"loaded {mib(before - interpreter)} + mining "
                  f"{mib(py_peak - before)}")
            print(f"          DataFrame {mib(frame_bytes)} (deep); peak less "
                  f"interpreter {mib(py_peak - interpreter)} vs DataFrame + "
                  f"cli peak {mib(budget)} (target: "
                  f"{'met' if py_peak - interpreter <= budget else 'MISSED'})"
                  "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())

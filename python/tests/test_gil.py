"""Mining runs without the GIL: another Python thread keeps running."""

from __future__ import annotations

import threading
import time

import numpy as np
import pandas as pd

import seqlattice


def test_another_thread_runs_while_a_model_is_mined():
    rng = np.random.default_rng(7)
    rows = 300_000
    data = pd.DataFrame({
        "customer": rng.integers(0, 20_000, rows),
        "time": rng.integers(0, 20, rows),
        "item": rng.integers(0, 40, rows),
    })
    result = {}

    def work():
        started = time.perf_counter()
        result["model"] = seqlattice.mine(data, min_support=0.004,
                                          threads=1)
        result["seconds"] = time.perf_counter() - started

    miner = threading.Thread(target=work)
    ticks = 0
    miner.start()
    while miner.is_alive():
        ticks += 1
        time.sleep(0.001)
    miner.join()
    assert result["model"].info()["patterns"] > 1000
    # With the GIL held for the whole run, the loop would see one tick or
    # two; without it, it wakes every millisecond or so.
    assert result["seconds"] > 0.2
    assert ticks > 20

"""seqlattice.dask.mine on a LocalCluster of two worker processes: the model
file equals seqlattice.mine's byte for byte, whatever the partitioning, the
input form or a worker lost on the way."""

from __future__ import annotations

import os
import signal
import threading
import time

import numpy as np
import pandas as pd
import pytest

import seqlattice

distributed = pytest.importorskip("distributed")
import seqlattice.dask  # noqa: E402

from conftest import SAMPLE, SHARED_DATA  # noqa: E402


@pytest.fixture(scope="module")
def client():
    cluster = distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, processes=True, host="127.0.0.1",
        dashboard_address=None, silence_logs=50)
    client = distributed.Client(cluster)
    yield client
    client.close()
    cluster.close()


def model_bytes(model, path) -> bytes:
    model.save(path)
    return path.read_bytes()


def expect_same(tmp_path, frame_or_files, single_data, **options):
    distributed_model = seqlattice.dask.mine(frame_or_files, **options)
    single = seqlattice.mine(single_data, **{
        k: v for k, v in options.items() if k not in ("client", "partitions")})
    got = model_bytes(distributed_model, tmp_path / "dask.model")
    want = model_bytes(single, tmp_path / "single.model")
    assert len(got) == len(want)
    assert got == want
    return distributed_model


def random_log(seed: int, customers: int) -> pd.DataFrame:
    """Customers of 1 to 8 transactions of 1 to 3 items of 12, times with
    ties (equal times merge into one transaction), rows shuffled."""
    random = np.random.default_rng(seed)
    rows = []
    for c in range(customers):
        for t in range(int(random.integers(1, 9))):
            when = int(random.integers(0, 6))
            for _ in range(int(random.integers(1, 4))):
                rows.append((f"u{c * 7919 % 100003}", when,
                             int(random.integers(0, 12))))
    frame = pd.DataFrame(rows, columns=["customer", "time", "item"])
    return frame.sample(frac=1.0, random_state=seed).reset_index(drop=True)


def test_sample_equals_single_machine(client, tmp_path):
    orders = pd.read_csv(SAMPLE)
    model = expect_same(tmp_path, orders, orders, client=client,
                        partitions=3, min_support=0.03)
    assert model.distributed["customers"] == 600
    assert model.distributed["min count"] == 18
    assert model.distributed["patterns"] == 838
    assert model.distributed["candidates"] >= 838
    expect_same(tmp_path, orders, orders, client=client, partitions=5,
                min_support=7, max_items=5, sequences=False)


def test_dask_frame_and_files(client, tmp_path):
    import dask.dataframe as dd
    orders = pd.read_csv(SAMPLE)
    expect_same(tmp_path, dd.from_pandas(orders, npartitions=4, sort=False),
                orders, client=client, min_support=0.05)
    log = seqlattice.read_log(SAMPLE)
    expect_same(tmp_path, [SAMPLE], log, client=client, partitions=4,
                min_support=0.04)


@pytest.mark.parametrize("seed", [1, 2, 3])
def test_random_logs(client, tmp_path, seed):
    log = random_log(seed, 300)
    for support, items in ((0.05, 4), (3, 3), (0.2, 6)):
        expect_same(tmp_path, log, log, client=client, partitions=seed + 2,
                    min_support=support, max_items=items)


def test_public_database(client, tmp_path):
    path = SHARED_DATA / "SIGN.txt"
    if not path.exists():
        pytest.skip(f"{path} is absent: the public databases are not here")
    log = seqlattice.read_log(path)
    model = expect_same(tmp_path, [path], log, client=client, partitions=4,
                        min_support=0.4, max_items=4)
    assert model.distributed["customers"] == 730


def bucket_of(customers: list, partitions: int) -> np.ndarray:
    hashed = pd.util.hash_pandas_object(pd.Series(customers, dtype=object),
                                        index=False).to_numpy()
    return hashed % np.uint64(partitions)


def test_skewed_partitions(client, tmp_path):
    # All customers holding the rare pattern <90, 91> hash to partition 0,
    # exactly the minimum count of them: only partition 0 can propose it.
    ids = [f"k{n}" for n in range(400)]
    buckets = bucket_of(ids, 4)
    rare = [c for c, b in zip(ids, buckets) if b == 0][:10]
    rows = [(c, 1, 5) for c in ids] + [(c, 2, 6) for c in ids[::3]]
    rows += [(c, 3, 90) for c in rare] + [(c, 4, 91) for c in rare]
    log = pd.DataFrame(rows, columns=["customer", "time", "item"])
    model = expect_same(tmp_path, log, log, client=client, partitions=4,
                        min_support=10)
    # <90, 91> and <5, 90, 91>, each in exactly the minimum count.
    patterns = model.patterns(contains="90;91")
    assert patterns["count"].tolist() == [10, 10]
    # More partitions than customers: most partitions are empty.
    tiny = log[log["customer"].isin(rare[:3])]
    expect_same(tmp_path, tiny, tiny, client=client, partitions=9,
                min_support=2)


def test_worker_killed_mid_run(client, tmp_path):
    log = random_log(7, 20000)
    result = {}

    def run():
        result["model"] = seqlattice.dask.mine(
            log, client=client, partitions=8, min_support=0.002,
            max_items=4, threads=1)

    miner = threading.Thread(target=run)
    miner.start()
    held = {}
    deadline = time.time() + 60
    while not held and time.time() < deadline and miner.is_alive():
        held = client.run_on_scheduler(lambda dask_scheduler: {
            key: [w.address for w in ts.who_has]
            for key, ts in dask_scheduler.tasks.items()
            if str(key).startswith("seqlattice-partition")
            and ts.state == "memory"})
        time.sleep(0.05)
    assert held and miner.is_alive(), "the run ended before a worker died"
    victim = next(iter(held.values()))[0]
    pid = client.run(os.getpid, workers=[victim])[victim]
    os.kill(pid, signal.SIGKILL)
    miner.join(timeout=240)
    assert not miner.is_alive()
    single = seqlattice.mine(log, min_support=0.002, max_items=4)
    assert (model_bytes(result["model"], tmp_path / "dask.model") ==
            model_bytes(single, tmp_path / "single.model"))
    client.wait_for_workers(2, timeout=60)


def test_candidate_limit_names_the_partition(client):
    orders = pd.read_csv(SAMPLE)
    with pytest.raises(seqlattice.MiningError,
                       match=r"partition \d of 2 \(\d+ customers, minimum "
                             r"count \d+ there\): more than 50 patterns"):
        seqlattice.dask.mine(orders, client=client, partitions=2,
                             min_support=0.03, max_candidates=50)


@pytest.mark.parametrize("option", [
    {"time_limit": 5.0}, {"max_patterns": 1000}, {"max_gap": 3},
    {"window": 2}, {"format": "csv"}])
def test_refuses_options_it_does_not_handle(client, option):
    orders = pd.read_csv(SAMPLE)
    name = next(iter(option))
    with pytest.raises(ValueError,
                       match=f"{name} is not supported distributed"):
        seqlattice.dask.mine(orders, client=client, min_support=0.03,
                             **option)


def test_needs_a_minimum_support(client):
    with pytest.raises(ValueError, match="needs min_support"):
        seqlattice.dask.mine(pd.read_csv(SAMPLE), client=client)

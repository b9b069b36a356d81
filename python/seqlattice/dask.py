"""Mining a log too large for one machine on a Dask cluster, exactly.

The C++ miner runs inside the Dask workers; nothing here is a cluster of its
own. The customers are split into partitions by a hash of their id, so that
all rows of a customer land in one partition, and mining takes two rounds
over the partitions (docs/distributed.md):

1. each partition is mined at its share of the minimum support (a pattern
   frequent in the whole log is frequent, by that share, in at least one
   partition), which proposes candidates;
2. every partition counts the union of the candidates, exactly;

and the driver keeps the candidates whose total count reaches the minimum and
builds the model from them. The model is the one :func:`seqlattice.mine`
makes of the same data, byte for byte once saved: the patterns, counts and
first customers are the same, the dictionary receives them in the order the
miner reports them, and the model's description (customers, transactions,
item labels, the customers' sequences) is assembled from the partitions in
the order of the whole log.

Tasks are named ``seqlattice-<step>-...``, so the dashboard, the task stream
and ``distributed.progress`` show how a run goes; a worker that dies is
replaced and its tasks rerun by Dask, which cannot change the result since
every task is a pure function of its inputs.
"""

from __future__ import annotations

import logging
import math
import os
from time import perf_counter
import uuid
import warnings
from typing import Any, Optional, Sequence, Union

import numpy as np
import pandas as pd

from . import _frame, _seqlattice
from ._model import Model, _check_range, _support_text, read_log

__all__ = ["mine"]

_log = logging.getLogger("seqlattice.dask")

# The keyword options of seqlattice.mine that a distributed run handles.
_SUPPORTED = ("sequences",)

# Candidates a partition may propose, and the union may hold, by default:
# about 100 bytes each on the driver, so 10^7 is a gigabyte.
DEFAULT_MAX_CANDIDATES = 10_000_000


def _refuse_options(options: dict) -> None:
    for name in options:
        if name not in _SUPPORTED:
            raise ValueError(
                f"seqlattice.dask.mine: {name} is not supported distributed "
                "(it needs the whole log on one machine or is not "
                "implemented for partitions); supported: min_support, "
                "max_items, threads, sequences, customer, time, item, "
                "partitions, max_candidates")


def _min_count(min_support: Union[float, int], customers: int) -> int:
    """The minimum count of min_support for the log, as the miner computes
    it (mining::MinSupport::countFor)."""
    text = _support_text(min_support)
    if text.lstrip("0123456789") == "":
        return int(text)
    product = float(text) * customers
    nearest = round(product)
    if abs(product - nearest) <= 1e-9 * max(1.0, product):
        result = int(nearest)
    else:
        result = math.ceil(product)
    return max(1, result)


def _client(client: Any) -> Any:
    if client is not None:
        return client
    from distributed import get_client
    try:
        return get_client()
    except ValueError:
        raise ValueError(
            "seqlattice.dask.mine: no Dask client; pass client= or create one "
            '(distributed.Client("tcp://scheduler:8786"), or '
            "Client(LocalCluster()) on one machine)") from None


def _input_frames(data: Any, names: tuple, partitions: int) -> list:
    """The input as a list of Dask delayed pandas frames, in log order."""
    import dask
    import dask.dataframe as dd
    customer, time, item = names
    if isinstance(data, pd.DataFrame):
        _frame._check_columns(data, names)
        if len(data) == 0:
            raise _seqlattice.InputError(f"{_frame.SOURCE}: no data rows")
        frame = dd.from_pandas(data[[customer, time, item]],
                               npartitions=max(1, min(partitions, len(data))),
                               sort=False)
        return list(frame.to_delayed())
    if isinstance(data, dd.DataFrame):
        return list(data.to_delayed())
    if isinstance(data, (list, tuple)) and data and all(
            isinstance(p, (str, os.PathLike)) for p in data):
        if names != ("customer", "time", "item"):
            raise ValueError(
                "seqlattice.dask.mine: files are read with the columns "
                "customer, time and item; customer=, time= and item= name "
                "the columns of a DataFrame")
        read = dask.delayed(read_log, pure=True)
        return [read(os.fspath(p)) for p in data]
    raise TypeError(
        "data: expected a pandas or Dask DataFrame or a list of files, not "
        f"{type(data).__name__}")


# The tasks. Each is a pure function of its arguments, so Dask may rerun
# any of them on another worker.

# A row's key: its input partition and its position there, so that keys
# ascend in the order of the whole log without knowing the partitions'
# lengths beforehand.
_POSITION_BITS = 40


def _prepare(frame: pd.DataFrame, index: int, names: tuple,
             partitions: int) -> dict:
    """One input partition, checked as seqlattice.mine checks a DataFrame,
    as its item labels and its rows per target partition (customer value,
    row key, time in seconds, item label)."""
    customer, time, item = names
    _frame._check_columns(frame, names)
    if len(frame) >= 1 << _POSITION_BITS:
        raise ValueError(f"input partition {index} has too many rows")
    codes, customers = _frame._codes(frame, customer, "customer")
    _frame._check_not_empty(frame, codes,
                            [_frame._label(v) for v in customers], "customer")
    times, _ = _frame._times(frame, time)  # dated matters only to time limits
    item_codes, items = _frame._codes(frame, item, "item")
    labels = [_frame._label(v) for v in items]
    _frame._check_not_empty(frame, item_codes, labels, "item")
    hashed = pd.util.hash_pandas_object(frame[customer], index=False)
    target = (hashed.to_numpy() % np.uint64(partitions)).astype(np.int64)
    rows = pd.DataFrame({
        "customer": frame[customer].to_numpy(),
        "key": (np.int64(index) << _POSITION_BITS) +
        np.arange(len(frame), dtype=np.int64),
        "time": times,
        "item": pd.Categorical(np.asarray(labels, dtype=object)[item_codes]),
    })
    return {"labels": sorted(set(labels)),
            "pieces": [rows[target == j] for j in range(partitions)]}


def _labels(prepared: dict) -> list:
    return prepared["labels"]


def _piece(prepared: dict, j: int) -> pd.DataFrame:
    return prepared["pieces"][j]


def _partition(*pieces: pd.DataFrame) -> dict:
    """A target partition from its pieces, in input order: its customers
    numbered by the order in which the whole log first shows them, each
    with the key of its first row."""
    rows = pd.concat(pieces, ignore_index=True)
    items = pd.api.types.union_categoricals(
        [piece["item"] for piece in pieces], ignore_order=True)
    # Keys ascend through the rows, so the order of first appearance is the
    # order of first rows, the whole log's order of its customers.
    local, _ = pd.factorize(rows["customer"], sort=False)
    keys = np.empty(local.max() + 1 if len(local) else 0, dtype=np.int64)
    row_keys = rows["key"].to_numpy()
    keys[local[::-1]] = row_keys[::-1]
    return {
        "customer": np.ascontiguousarray(local, dtype=np.int32),
        "time": np.ascontiguousarray(rows["time"].to_numpy(), np.float64),
        "item": np.ascontiguousarray(items.codes, dtype=np.int32),
        "labels": list(items.categories),
        "keys": keys,
    }


def _size(part: dict) -> int:
    return len(part["keys"])


def _keys(part: dict) -> np.ndarray:
    return part["keys"]


def _columns(part: dict, codes: dict) -> tuple:
    """The partition's columns for the extension, its item labels turned
    into the codes of the whole log (as decimal labels, which keep them)."""
    return (part["customer"], part["time"], part["item"],
            len(part["keys"]), [str(codes[label]) for label in part["labels"]])


def _mine_partition(part: dict, codes: dict, j: int, partitions: int,
                    min_count: int, max_items: int, threads: int,
                    max_candidates: int, sequences: bool) -> tuple:
    """Phase 1 on partition j at min_count."""
    try:
        records, found, described, flat = _seqlattice.mine_partition(
            *_columns(part, codes), min_count, max_items, threads, max_candidates,
            sequences)
    except _seqlattice.MiningError as e:
        raise _seqlattice.MiningError(
            f"partition {j} of {partitions} ({len(part['keys'])} customers, "
            f"minimum count {min_count} there): {e}: its candidate set "
            "would outgrow memory; raise min_support, lower max_items or "
            "raise max_candidates") from None
    return records, found, described, flat


def _count_partition(part: dict, codes: dict, candidates: np.ndarray,
                     threads: int) -> tuple:
    """Phase 2: counts and the first customers' keys in partition j."""
    counts, firsts = _seqlattice.count_partition(*_columns(part, codes),
                                                 candidates, threads)
    keys = np.full(len(firsts), np.iinfo(np.int64).max, dtype=np.int64)
    seen = firsts >= 0
    keys[seen] = part["keys"][firsts[seen]]
    return counts, keys


def _identity(value: Any) -> Any:
    return value


def _ranges(starts: np.ndarray, lengths: np.ndarray) -> np.ndarray:
    """The indexes starts[k] .. starts[k] + lengths[k] - 1, all k in turn."""
    ends = np.cumsum(lengths)
    shift = np.repeat(starts - (ends - lengths), lengths)
    return shift + np.arange(int(ends[-1]) if len(ends) else 0)


def _merge_sequences(flats: list, keys: list, parts: Any) -> None:
    """The partitions' sequences in the order of the whole log."""
    set_base = item_base = 0
    customer_sets, set_items, set_sizes, sizes, items = [], [], [], [], []
    for flat_items, set_starts, customer_starts in flats:
        customer_starts = customer_starts.astype(np.int64)
        set_starts = set_starts.astype(np.int64)
        customer_sets.append(customer_starts[:-1] + set_base)
        sizes.append(np.diff(customer_starts))
        set_items.append(set_starts[:-1] + item_base)
        set_sizes.append(np.diff(set_starts))
        items.append(flat_items)
        set_base += len(set_starts) - 1
        item_base += len(flat_items)
    order = np.argsort(np.concatenate(keys), kind="stable")
    sets_per_customer = np.concatenate(sizes)[order]
    sets = _ranges(np.concatenate(customer_sets)[order], sets_per_customer)
    items_per_set = np.concatenate(set_sizes)[sets]
    flat = np.concatenate(items)[_ranges(np.concatenate(set_items)[sets],
                                         items_per_set)]
    starts = lambda n: np.concatenate(  # noqa: E731
        [[0], np.cumsum(n)]).astype(np.uint32)
    parts.set_sequences(np.ascontiguousarray(flat, dtype=np.int32),
                        starts(items_per_set), starts(sets_per_customer))


def mine(data: Any, *, client: Any = None, partitions: Optional[int] = None,
         customer: str = "customer", time: str = "time", item: str = "item",
         min_support: Optional[Union[float, int]] = None, max_items: int = 4,
         threads: Optional[int] = None,
         max_candidates: int = DEFAULT_MAX_CANDIDATES,
         **mine_options: Any) -> Model:
    """Mines a customer log on a Dask cluster into the model that
    :func:`seqlattice.mine` makes of the same log (the same model file, byte
    for byte).

    ``data`` is a Dask DataFrame, a pandas DataFrame (spread over the
    cluster) or a list of files (CSV/TSV/SPMF, read as
    :func:`seqlattice.read_log` reads them, the model then being that of
    their rows concatenated as one DataFrame). ``client`` is the
    ``distributed.Client`` to run on (default: the current one);
    ``partitions`` how many partitions the customers are hashed into
    (default: twice the workers). ``min_support`` is needed (a fraction or
    a count, as for :func:`seqlattice.mine`); ``max_items``, ``threads``
    (per task) and ``sequences`` mean what they mean there. Options that a
    distributed run does not handle (a pattern budget, a time limit, any
    other) are refused with ValueError.

    A partition whose candidates would exceed ``max_candidates`` patterns
    (and a union of candidates beyond it) is refused with MiningError naming
    the partition and the counts.
    """
    _refuse_options(mine_options)
    sequences = bool(mine_options.get("sequences", True))
    if min_support is None:
        raise ValueError(
            "seqlattice.dask.mine needs min_support: without one the support "
            "is chosen from a pattern budget over the whole log, which needs "
            "it on one machine")
    settings = _seqlattice.MineSettings()
    settings.min_support = _support_text(min_support)
    settings.max_items = _check_range("max_items", max_items, 1, 31)
    settings.sequences = sequences
    threads = 0 if threads is None else _check_range("threads", threads, 0,
                                                     4096)
    max_candidates = _check_range("max_candidates", max_candidates, 1,
                                  2**31 - 1)
    client = _client(client)
    if partitions is None:
        workers = len(client.scheduler_info().get("workers", {}))
        partitions = max(1, 2 * workers)
    partitions = _check_range("partitions", partitions, 1, 1_000_000)
    names = (customer, time, item)
    run = uuid.uuid4().hex[:8]

    def key(step: str, j: Any = "") -> str:
        return f"seqlattice-{step}-{run}-{j}"

    started = clock = perf_counter()
    seconds = {}

    def lap(step: str) -> None:
        nonlocal clock
        now = perf_counter()
        seconds[step] = now - clock
        clock = now

    inputs = client.compute(_input_frames(data, names, partitions))
    prepared = [client.submit(_prepare, f, i, names, partitions,
                              key=key("prepare", i))
                for i, f in enumerate(inputs)]
    labels = [client.submit(_labels, p, key=key("labels", i))
              for i, p in enumerate(prepared)]
    parts = [client.submit(_partition, *[
        client.submit(_piece, p, j, key=key("piece", f"{i}-{j}"))
        for i, p in enumerate(prepared)], key=key("partition", j))
        for j in range(partitions)]
    sizes = [client.submit(_size, p, key=key("size", j))
             for j, p in enumerate(parts)]
    del inputs, prepared
    labels = sorted(set().union(*client.gather(labels)))
    codes = dict(zip(labels, _seqlattice.item_codes(labels)))
    codes_future = client.submit(_identity, codes, key=key("codes"))
    sizes = client.gather(sizes)
    customers = int(sum(sizes))
    if customers == 0:
        raise _seqlattice.InputError(f"{_frame.SOURCE}: no data rows")
    min_count = _min_count(min_support, customers)
    lap("partitioning")
    _log.info("%d customers in %d partitions, minimum count %d", customers,
              partitions, min_count)

    # Phase 1: a pattern reaching min_count over the log reaches, in some
    # partition of n customers, its share min_count * n / customers.
    live = [j for j in range(partitions) if sizes[j] > 0]
    shares = {j: max(1, -(-min_count * sizes[j] // customers)) for j in live}
    phase1 = client.gather([
        client.submit(_mine_partition, parts[j], codes_future, j, partitions,
                      shares[j],
                      settings.max_items, threads, max_candidates, sequences,
                      key=key("phase1", j)) for j in live])
    proposed = sum(found for _, found, _, _ in phase1)
    candidates, union = _seqlattice.union_records(
        [r for r, _, _, _ in phase1])
    described = [d for _, _, d, _ in phase1]
    flats = [f for _, _, _, f in phase1]
    del phase1
    if union > max_candidates:
        raise _seqlattice.MiningError(
            f"the partitions propose {union} distinct candidate patterns, "
            f"more than max_candidates={max_candidates}: raise min_support "
            "or lower max_items")
    lap("phase 1")
    _log.info("phase 1: %d candidates proposed, %d distinct", proposed, union)

    # Phase 2: every partition counts every candidate.
    # Passed as a task's argument rather than scattered, so that the
    # scheduler can rebuild it when the workers holding it die; Dask warns
    # of large arguments, which this one is on purpose.
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", UserWarning)
        shared = client.submit(_identity, candidates, key=key("candidates"))
    counted = client.gather([
        client.submit(_count_partition, parts[j], codes_future, shared,
                      threads, key=key("phase2", j)) for j in live])
    keys = client.gather([client.submit(_keys, parts[j], key=key("keys", j))
                          for j in live])
    lap("phase 2")
    counts = np.sum([c for c, _ in counted], axis=0, dtype=np.int64)
    first_keys = np.min([k for _, k in counted], axis=0)
    all_keys = np.sort(np.concatenate(keys))
    del parts
    firsts = np.searchsorted(all_keys, first_keys).astype(np.int64)
    frequent, patterns = _seqlattice.keep_frequent(candidates, counts, firsts,
                                                   min_count)

    model_parts = _seqlattice.PatternModelParts()
    model_parts.settings = settings
    model_parts.customers = customers
    model_parts.min_count = min_count
    model_parts.transactions = sum(d["transactions"] for d in described)
    model_parts.item_occurrences = sum(d["item_occurrences"]
                                       for d in described)
    model_parts.widest = max(d["widest"] for d in described)
    model_parts.input_name = _frame.SOURCE
    model_parts.input_format = "dataframe"
    model_parts.item_labels = labels
    if sequences:
        _merge_sequences(flats, keys, model_parts)
    model = Model(_seqlattice.Model.from_records(frequent, model_parts))
    lap("model")
    seconds["total"] = clock - started
    _log.info("%d patterns of %d candidates", patterns, union)
    # What the run did, for the curious and the benchmark.
    model.distributed = {"customers": customers, "partitions": partitions,
                         "min count": min_count,
                         "candidates proposed": int(proposed),
                         "candidates": int(union), "patterns": int(patterns),
                         "seconds": seconds}
    return model

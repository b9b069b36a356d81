"""A pandas DataFrame's transaction log as the columns the extension reads.

Each of the customer, time and item columns becomes one NumPy array through
vectorised pandas operations (factorize, categorical codes, datetime
arithmetic); Python code runs once per distinct customer or item label, never
once per row. Problems a CSV file would have are reported the way the CSV
reader reports them, naming the row by its position (from 0, as ``iloc``
counts) and its index label.
"""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Sequence

import numpy as np
import pandas as pd

from . import _seqlattice

SOURCE = "DataFrame"


@dataclass
class LogColumns:
    customer: np.ndarray  # int32 index into customers
    time: np.ndarray  # float64
    item: np.ndarray  # int32 index into item_labels
    customers: pd.Index  # the customers' own values, by index
    item_labels: list[str]
    dated: bool = False  # times are seconds of dates (or timedeltas)


def _fail(frame: pd.DataFrame, position: int, problem: str) -> None:
    label = frame.index[position]
    raise _seqlattice.InputError(
        f"{SOURCE} row {position} (index {label!r}): {problem}")


def _quoted(name: Any) -> str:
    return f'"{name}"'


def _check_columns(frame: pd.DataFrame, names: Sequence[str]) -> None:
    customer, time, item = names
    if len({customer, time, item}) != 3:
        raise _seqlattice.InputError(
            f"{SOURCE}: the customer, time and item columns must be three "
            f"different columns, not {_quoted(customer)}, {_quoted(time)} "
            f"and {_quoted(item)}")
    for name in names:
        if name not in frame.columns:
            columns = ", ".join(_quoted(c) for c in frame.columns)
            raise _seqlattice.InputError(
                f"{SOURCE}: no column {_quoted(name)} (columns: {columns})")
        if isinstance(frame[name], pd.DataFrame):
            raise _seqlattice.InputError(
                f"{SOURCE}: column {_quoted(name)} appears twice")


def _label(value: Any) -> str:
    return value if isinstance(value, str) else str(value)


def _codes(frame: pd.DataFrame, name: str, what: str):
    """Dense codes in order of first appearance, and the distinct values."""
    codes, uniques = pd.factorize(frame[name], sort=False)
    missing = np.flatnonzero(codes < 0)
    if missing.size:
        _fail(frame, int(missing[0]), f"missing {what}")
    return codes.astype(np.int32, copy=False), uniques


def _check_not_empty(frame: pd.DataFrame, codes: np.ndarray,
                     labels: list[str], what: str) -> None:
    if "" in labels:
        empty = labels.index("")
        _fail(frame, int(np.flatnonzero(codes == empty)[0]), f"empty {what}")


def _seconds(values: np.ndarray) -> np.ndarray:
    """Seconds of datetime64/timedelta64 values, exact to the nanosecond."""
    ns = values.astype("int64", copy=False)
    whole, fraction = np.divmod(ns, 1_000_000_000)
    return whole.astype(np.float64) + fraction / 1e9


def _text_times(frame: pd.DataFrame,
                series: pd.Series) -> tuple[np.ndarray, bool]:
    codes, uniques = pd.factorize(series.to_numpy(dtype=object), sort=False)
    texts = [_label(v) for v in uniques]
    values, kinds = _seqlattice.parse_times(texts)
    row_kinds = kinds[codes]
    bad = np.flatnonzero(row_kinds < 0)
    if bad.size:
        text = texts[codes[bad[0]]]
        _fail(frame, int(bad[0]),
              f'bad time "{text}": expected a number or an ISO-8601 date')
    mixed = np.flatnonzero(row_kinds != row_kinds[0])
    if mixed.size:
        kind = ["a number", "a date"]
        text = texts[codes[mixed[0]]]
        _fail(frame, int(mixed[0]),
              f'time "{text}" is {kind[row_kinds[mixed[0]]]} but row 0 has '
              f"{kind[row_kinds[0]]}")
    return values[codes], bool(row_kinds[0] == 1)


def _time_values(frame: pd.DataFrame,
                 series: pd.Series) -> tuple[np.ndarray, bool]:
    """The times as floats, and whether they are seconds of dates."""
    dtype = series.dtype
    if isinstance(dtype, pd.CategoricalDtype):
        # The categories' values per row (a vectorised take), so that a bad
        # one is reported at its row.
        return _time_values(frame,
                            series.astype(dtype.categories.dtype))
    if isinstance(dtype, pd.DatetimeTZDtype):
        series = series.dt.tz_convert("UTC").dt.tz_localize(None)
        dtype = series.dtype
    if pd.api.types.is_datetime64_dtype(dtype) or \
            pd.api.types.is_timedelta64_dtype(dtype):
        values = series.to_numpy()
        seconds = _seconds(values)
        seconds[np.isnat(values)] = np.nan
        return seconds, True
    if pd.api.types.is_numeric_dtype(dtype) or pd.api.types.is_bool_dtype(
            dtype):
        return series.to_numpy(dtype=np.float64, na_value=np.nan), False
    return _text_times(frame, series)


def _times(frame: pd.DataFrame, name: str) -> tuple[np.ndarray, bool]:
    series = frame[name]
    missing = np.flatnonzero(series.isna().to_numpy())
    if missing.size:
        _fail(frame, int(missing[0]), "missing time")
    values, dated = _time_values(frame, series)
    infinite = np.flatnonzero(~np.isfinite(values))
    if infinite.size:
        _fail(frame, int(infinite[0]),
              f'bad time "{series.iloc[infinite[0]]}": expected a number or '
              "an ISO-8601 date")
    return np.ascontiguousarray(values, dtype=np.float64), dated


def log_columns(frame: pd.DataFrame, customer: str, time: str,
                item: str) -> LogColumns:
    """The frame's log as columns; raises InputError as the CSV reader."""
    _check_columns(frame, (customer, time, item))
    if len(frame) == 0:
        raise _seqlattice.InputError(f"{SOURCE}: no data rows")
    customer_codes, customers = _codes(frame, customer, "customer")
    _check_not_empty(frame, customer_codes,
                     [_label(v) for v in customers], "customer")
    times, dated = _times(frame, time)
    item_codes, items = _codes(frame, item, "item")
    item_labels = [_label(v) for v in items]
    _check_not_empty(frame, item_codes, item_labels, "item")
    return LogColumns(customer_codes, times, item_codes, pd.Index(customers),
                      item_labels, dated)

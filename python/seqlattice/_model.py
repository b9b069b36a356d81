"""The Model class and the functions that make one: mine and load."""

from __future__ import annotations

import datetime
import os
import warnings
from typing import Any, Iterable, Optional, Sequence, Union

import numpy as np
import pandas as pd

from . import _frame, _seqlattice

PathLike = Union[str, "os.PathLike[str]"]
Data = Union[pd.DataFrame, PathLike]
History = Union[str, Sequence[Sequence[Any]]]
ItemSet = Union[str, Sequence[Any]]

_BOUNDS = ("min_support", "max_support", "min_confidence", "max_confidence",
           "min_cause", "max_cause")
# The measures the library orders rules by; the PMML document knows no other.
_LIBRARY_SORTS = ("support", "confidence", "cause")


def _set_options(target: Any, options: dict, function: str) -> None:
    """Sets each option as an attribute of a settings object of the
    extension; an option it does not have is a TypeError, as for any
    unexpected keyword argument."""
    for name, value in options.items():
        if name.startswith("_") or not hasattr(target, name):
            raise TypeError(
                f"{function}() got an unexpected keyword argument '{name}'")
        setattr(target, name, value)


def _input_options(customer: str, time: str, item: str, format: str,
                   delimiter: Optional[str], skip_invalid: bool = False,
                   time_format: Optional[str] = None
                   ) -> _seqlattice.InputOptions:
    if format not in ("auto", "csv", "spmf"):
        raise ValueError(
            f'format: expected "auto", "csv" or "spmf", not "{format}"')
    options = _seqlattice.InputOptions()
    options.format = format
    options.customer, options.time, options.item = customer, time, item
    if delimiter is not None:
        options.delimiter = delimiter
    options.skip_invalid = skip_invalid
    if time_format is not None:
        options.time_format = time_format
    return options


def _support_text(value: Any) -> str:
    """A minimum support in the tool's syntax: an int is a count of
    customers, a float a fraction of them."""
    if isinstance(value, (bool, np.bool_)):
        raise TypeError("min_support: expected a float or an int, not a bool")
    if isinstance(value, (int, np.integer)):
        return str(int(value))
    if isinstance(value, (float, np.floating)):
        return repr(float(value))
    if isinstance(value, str):
        return value
    raise TypeError(
        f"min_support: expected a float or an int, not {type(value).__name__}")


def _check_range(name: str, value: Any, low: int, high: int) -> int:
    if isinstance(value, bool) or not isinstance(value, (int, np.integer)):
        raise TypeError(f"{name}: expected an int, not {type(value).__name__}")
    if not low <= value <= high:
        raise ValueError(f"{name}: {value} is not within [{low}, {high}]")
    return int(value)


def _check_float(name: str, value: Any, low: float, high: float) -> float:
    if isinstance(value, bool) or not isinstance(
            value, (int, float, np.integer, np.floating)):
        raise TypeError(f"{name}: expected a float, not {type(value).__name__}")
    if not low <= value <= high:
        raise ValueError(f"{name}: {value} is not within [{low}, {high}]")
    return float(value)


def _rule_bounds(sort: str, maximal: bool,
                 bounds: dict) -> _seqlattice.RuleBounds:
    result = _seqlattice.RuleBounds()
    for name, value in bounds.items():
        if name not in _BOUNDS:
            raise TypeError(f"unexpected keyword argument '{name}'")
        value = float(value)
        if not 0.0 <= value <= 1.0:
            raise ValueError(f"{name}: {value} is not within [0, 1]")
        setattr(result, name, value)
    result.sort = sort
    result.maximal = bool(maximal)
    return result


def _rule_filters(min_lift: float, antecedent_has: Optional[ItemSet],
                  consequent: Optional[ItemSet]) -> _seqlattice.RuleFilters:
    result = _seqlattice.RuleFilters()
    min_lift = float(min_lift)
    if not min_lift >= 0.0:
        raise ValueError(f"min_lift: {min_lift} is not at least 0")
    result.min_lift = min_lift
    result.antecedent_has = _item_set("antecedent_has", antecedent_has)
    result.consequent = _item_set("consequent", consequent)
    return result


def _item_set(name: str, items: Optional[ItemSet]) -> Optional[list[str]]:
    """One item set: the tool's syntax "a,b" or a list of labels."""
    if items is None:
        return None
    if not isinstance(items, str):
        return [str(label) for label in items]
    sets = _seqlattice.parse_item_sequence(items)
    if len(sets) > 1:
        raise ValueError(f"{name}: one item set expected, items separated "
                         "by ','")
    return [label for item_set in sets for label in item_set]


def _history_sets(history: History) -> list[list[str]]:
    if isinstance(history, str):
        return _seqlattice.parse_item_sequence(history)
    sets = []
    for item_set in history:
        if isinstance(item_set, str):
            item_set = [item_set]
        sets.append([str(label) for label in item_set])
    return sets


def _frame_of(columns: dict) -> pd.DataFrame:
    return pd.DataFrame(columns, columns=list(columns))


def _warn_unknown(command: str, labels: Iterable[str]) -> None:
    for label in labels:
        warnings.warn(f'{command}: item "{label}" is not in the model',
                      stacklevel=3)


class Model:
    """A mined sequential pattern model: the frequent sequence patterns of a
    customer log in a lattice, the labels of its items and the parameters it
    was mined with.

    Made by :func:`mine` or :func:`load`; the same object the ``seqlattice``
    command-line tool writes to and reads from its model files. Queries,
    predictions and file writes run without the GIL; one model serves one
    call at a time (other threads wait for it).
    """

    def __init__(self, core: _seqlattice.Model) -> None:
        self._core = core

    def rules(self, *, sort: str = "confidence", top: Optional[int] = None,
              maximal: bool = False, min_lift: float = 0.0,
              antecedent_has: Optional[ItemSet] = None,
              consequent: Optional[ItemSet] = None,
              **bounds: float) -> pd.DataFrame:
        """The sequential association rules, as ``seqlattice rules`` lists
        them.

        A rule reads "customers who bought the antecedent's item sets, in
        order, then buy the consequent". Bounds, fractions within [0, 1]
        and inclusive: ``min_support``, ``max_support``, ``min_confidence``,
        ``max_confidence``, ``min_cause``, ``max_cause``; ``min_lift`` the
        least lift (>= 0). ``sort`` is "confidence", "support", "cause",
        "lift", "leverage" or "conviction" (decreasing); ``top`` keeps the
        first rules; ``maximal`` takes only rules of patterns that no longer
        pattern extends. ``antecedent_has`` keeps the rules whose antecedent
        holds all these items (in any of its item sets), ``consequent``
        those whose consequent is exactly this item set: each "a,b" or a
        list of labels. Items of a filter the model does not know are
        warned about (such a filter matches nothing).

        Returns columns rank, antecedent, consequent (tuples of item sets,
        each a tuple of labels), support, confidence, cause, lift, leverage
        and conviction (``inf`` for a rule that never fails).
        """
        top = 0 if top is None else _check_range("top", top, 0, 2**31 - 1)
        columns, unknown = self._core.rules(
            _rule_bounds(sort, maximal, bounds),
            _rule_filters(min_lift, antecedent_has, consequent), top)
        _warn_unknown("rules", unknown)
        return _frame_of(columns)

    def patterns(self, *, contains: Optional[History] = None,
                 beginning: Optional[History] = None,
                 ending: Optional[History] = None, size: int = 0,
                 maximal: bool = False, min_count: int = 0,
                 max_count: Optional[int] = None) -> pd.DataFrame:
        """The stored patterns, most frequent first, as ``seqlattice
        patterns`` lists them.

        At most one of ``contains``, ``beginning`` and ``ending`` (an item
        sequence: "a,b;c" or a list of item sets) selects the patterns that
        contain, begin with or end with it. ``size`` keeps patterns of that
        many items, ``maximal`` those that no longer pattern extends,
        ``min_count``/``max_count`` those found in that many customers.
        Items of the query the model does not know are warned about (such a
        query matches nothing).

        Returns columns pattern (a tuple of item sets, each a tuple of
        labels), items, count and support.
        """
        query = _seqlattice.PatternQuery()
        given = [(kind, sequence) for kind, sequence in
                 (("contains", contains), ("beginning", beginning),
                  ("ending", ending)) if sequence is not None]
        if len(given) > 1:
            raise ValueError("give at most one of contains, beginning and "
                             "ending")
        if given:
            kind, sequence = given[0]
            query.kind = getattr(_seqlattice.PatternQueryKind, kind)
            query.sequence = _history_sets(sequence)
        query.size = _check_range("size", size, 0, 2**31 - 1)
        query.maximal = bool(maximal)
        query.min_count = _check_range("min_count", min_count, 0, 2**31 - 1)
        if max_count is not None:
            query.max_count = _check_range("max_count", max_count, 0,
                                           2**31 - 1)
        columns, unknown = self._core.patterns(query)
        _warn_unknown("patterns", unknown)
        return _frame_of(columns)

    def predict(self, data: Union[History, pd.DataFrame, "os.PathLike[str]"],
                *, top: int = 5, current: bool = False,
                last_set_only: bool = False, rank: str = "recommend",
                new_only: bool = False, repeat_only: bool = False,
                explain: bool = False, only_customer: Any = None,
                prior: Optional[float] = None, earlier_weight: Optional[float] = None,
                sequence_weight: Optional[float] = None, context_sets: int = 8,
                context_customers: int = 100, max_dropped: int = 4,
                decay: Optional[float] = None,
                next_weight: Optional[float] = None,
                popularity_power: Optional[float] = None,
                customer: str = "customer",
                time: str = "time", item: str = "item", format: str = "auto",
                delimiter: Optional[str] = None) -> pd.DataFrame:
        """The items customers buy next, as ``seqlattice predict`` predicts
        them (the same code path, so the same predictor and scores).

        ``data`` is one customer's history, oldest order first: the tool's
        syntax "a,b;c" (items of an order separated by ',', orders by ';')
        or a list of orders, each a list of item labels ([] for a new
        customer). Or it is a log of many customers: a DataFrame with the
        ``customer``, ``time`` and ``item`` columns, or a path
        (``pathlib.Path``) of a CSV/TSV or SPMF file read as
        ``predict --input`` reads it (``format``, ``delimiter``).

        ``top`` items per customer; ``current`` predicts items of the
        current (last) order instead of the next one, in the library's
        confidence order; ``last_set_only`` uses only patterns ending in the
        last order. The other options are ``predict``'s (docs/recommender.md):
        ``rank`` "recommend", "lift" or "confidence"; ``new_only`` and
        ``repeat_only`` filter by the history's items; ``explain`` adds the
        evidence behind each item; ``only_customer`` keeps one customer of a
        log; ``prior``, ``earlier_weight``, ``sequence_weight``,
        ``context_sets``, ``context_customers``, ``max_dropped``, ``decay``,
        ``next_weight`` and ``popularity_power`` weigh the evidence (None:
        chosen from the model's data).

        Returns columns rank, item, for the recommender's rankings score and
        source, and the prediction's measures; a log adds a customer column
        first (the DataFrame's own customer values).
        """
        settings = _seqlattice.PredictSettings()
        settings.top = _check_range("top", top, 1, 2**31 - 1)
        if current and (last_set_only or rank != "recommend" or new_only
                        or repeat_only or explain):
            raise ValueError("current excludes last_set_only, rank, "
                             "new_only, repeat_only and explain")
        if rank not in ("recommend", "lift", "confidence"):
            raise ValueError('rank: expected "recommend", "lift" or '
                             f'"confidence", not "{rank}"')
        if new_only and repeat_only:
            raise ValueError("new_only and repeat_only exclude each other")
        settings.current = bool(current)
        settings.last_set_only = bool(last_set_only)
        settings.rank = rank
        settings.new_only = bool(new_only)
        settings.repeat_only = bool(repeat_only)
        settings.explain = bool(explain)
        settings.prior = -1.0 if prior is None else _check_float(
            "prior", prior, 0.0, float("inf"))
        settings.earlier_weight = -1.0 if earlier_weight is None else \
            _check_float("earlier_weight", earlier_weight, 0.0, 1.0)
        settings.sequence_weight = -1.0 if sequence_weight is None else \
            _check_float("sequence_weight", sequence_weight, 0.0, 1.0)
        settings.context_sets = _check_range("context_sets", context_sets, 1,
                                             1000)
        settings.context_customers = _check_range(
            "context_customers", context_customers, 1, 1000000)
        settings.max_dropped = _check_range("max_dropped", max_dropped, 0, 8)
        settings.decay = -1.0 if decay is None else _check_float(
            "decay", decay, 0.0, float("inf"))
        settings.next_weight = -1.0 if next_weight is None else _check_float(
            "next_weight", next_weight, 0.0, 1.0)
        settings.popularity_power = -1.0 if popularity_power is None else \
            _check_float("popularity_power", popularity_power, 0.0, 10.0)
        if only_customer is not None and not isinstance(data, pd.DataFrame):
            if not isinstance(data, os.PathLike):
                raise ValueError("only_customer: needs a log, not a history")
            settings.customer = str(only_customer)
        if isinstance(data, pd.DataFrame):
            log = _frame.log_columns(data, customer, time, item)
            if only_customer is not None:
                found = np.flatnonzero(log.customers == only_customer)
                if len(found) == 0:
                    raise _seqlattice.Error(
                        f'predict: no customer "{only_customer}"')
                settings.customer = str(int(found[0]))
            columns = self._core.predict_columns(
                log.customer, log.time, log.item, len(log.customers),
                log.item_labels, settings)
            index = np.asarray(columns["customer"], dtype=np.int64)
            columns["customer"] = log.customers.take(index)
            return _frame_of(columns)
        if isinstance(data, os.PathLike):
            options = _input_options(customer, time, item, format, delimiter)
            return _frame_of(
                self._core.predict_file(os.fspath(data), options, settings))
        columns, unknown = self._core.predict_history(_history_sets(data),
                                                      settings)
        _warn_unknown("predict", unknown)
        return _frame_of(columns)

    def info(self) -> dict[str, Any]:
        """What the model holds and how it was mined: the fields of
        ``seqlattice info``, in its order."""
        return self._core.info()

    def save(self, path: PathLike, format: str = "binary") -> None:
        """Writes the model file (``format`` "binary" or "xml") that the tool
        reads; an existing file is replaced only once the new one is
        complete."""
        if format not in ("binary", "xml"):
            raise ValueError(
                f'format: expected "binary" or "xml", not "{format}"')
        self._core.save(os.fspath(path), format == "xml")

    def to_pmml(self, path: PathLike, *, sort: str = "confidence",
                maximal: bool = False, **bounds: float) -> None:
        """Writes the PMML 3.2 sequence model of the rules within bounds
        (those of :meth:`rules`), as ``seqlattice export pmml``; ``sort``
        is "confidence", "support" or "cause"."""
        if sort not in _LIBRARY_SORTS:
            raise ValueError('sort: expected "support", "confidence" or '
                             f'"cause", not "{sort}"')
        self._core.to_pmml(os.fspath(path),
                           _rule_bounds(sort, maximal, bounds))

    def to_lattice_xml(self, path: PathLike, *,
                       min_support: float = 0.0) -> None:
        """Writes the lattice document of every stored pattern, as
        ``seqlattice export lattice``; ``min_support`` is stated when it
        exceeds the model's."""
        if not 0.0 <= min_support <= 1.0:
            raise ValueError(f"min_support: {min_support} is not within "
                             "[0, 1]")
        self._core.to_lattice_xml(os.fspath(path), float(min_support))

    def to_dot(self, path: PathLike, *, top: int = 30) -> None:
        """Writes a Graphviz graph of the ``top`` most frequent patterns and
        the links to their one-item extensions, as ``seqlattice export
        dot``."""
        self._core.to_dot(os.fspath(path),
                          _check_range("top", top, 1, 2**31 - 1))

    def __repr__(self) -> str:
        info = self.info()
        return (f"<seqlattice.Model: {info['patterns']} patterns of "
                f"{info['customers (N)']} customers>")


Duration = Union[str, int, float, datetime.timedelta]


def _duration_text(name: str, value: Duration) -> str:
    """A time constraint as ``mine`` takes it: "30d", "90m", a number, or a
    timedelta (as seconds, for a log of dates)."""
    if isinstance(value, bool):
        raise TypeError(f"{name}: expected a duration, not a bool")
    if isinstance(value, datetime.timedelta):
        return f"{value.total_seconds()!r}s"
    if isinstance(value, (int, float)):
        return repr(value)
    if isinstance(value, str):
        return value
    raise TypeError(f"{name}: expected a duration (\"30d\", a number or a "
                    f"timedelta), not {type(value).__name__}")


def _set_time_constraints(settings, limits: dict[str, Optional[Duration]],
                          gap_stats: bool) -> None:
    for name, value in limits.items():
        if value is not None:
            setattr(settings, name, _duration_text(name, value))
    settings.gap_stats = bool(gap_stats)


def _mine(data: Data, customer: str, time: str, item: str,
          min_support: Optional[Union[float, int]],
          max_patterns: Optional[int], max_items: Optional[int],
          threads: Optional[int], format: str, delimiter: Optional[str],
          options: dict, function: str, pattern_file: str = "",
          pattern_format: str = "auto", skip_invalid: bool = False,
          time_format: Optional[str] = None,
          limits: Optional[dict[str, Optional[Duration]]] = None,
          gap_stats: bool = False):
    """The extension's model and the miner's summary."""
    settings = _seqlattice.MineSettings()
    _set_time_constraints(settings, limits or {}, gap_stats)
    if min_support is not None:
        settings.min_support = _support_text(min_support)
    if max_patterns is not None:
        settings.max_patterns = _check_range("max_patterns", max_patterns, 1,
                                             100000000)
    if max_items is not None:
        settings.max_items = _check_range("max_items", max_items, 1, 31)
        settings.max_items_given = True
    settings.threads = 0 if threads is None else _check_range(
        "threads", threads, 0, 4096)
    _set_options(settings, options, function)
    if isinstance(data, pd.DataFrame):
        if skip_invalid or time_format is not None:
            raise ValueError(
                f"{function}: skip_invalid and time_format read text files; "
                "convert a DataFrame's columns with pandas instead (e.g. "
                "pd.to_datetime(column, format=...), dropna)")
        log = _frame.log_columns(data, customer, time, item)
        return _seqlattice.Model.mine_columns(
            log.customer, log.time, log.item, len(log.customers),
            log.item_labels, settings, _frame.SOURCE, pattern_file,
            pattern_format, log.dated)
    if isinstance(data, (str, os.PathLike)):
        input_options = _input_options(customer, time, item, format,
                                       delimiter, skip_invalid, time_format)
        return _seqlattice.Model.mine_file(os.fspath(data), input_options,
                                           settings, pattern_file,
                                           pattern_format)
    raise TypeError("data: expected a pandas DataFrame or a path, not "
                    f"{type(data).__name__}")


def mine(data: Data, *, customer: str = "customer", time: str = "time",
         item: str = "item", min_support: Optional[Union[float, int]] = None,
         max_patterns: Optional[int] = None,
         max_items: Optional[int] = None,
         threads: Optional[int] = None,
         format: str = "auto", delimiter: Optional[str] = None,
         skip_invalid: bool = False, time_format: Optional[str] = None,
         min_gap: Optional[Duration] = None,
         max_gap: Optional[Duration] = None,
         max_span: Optional[Duration] = None,
         window: Optional[Duration] = None, gap_stats: bool = False,
         **options: Any) -> Model:
    """Mines every frequent sequential pattern of a customer log into a
    model, as ``seqlattice mine`` does (the same code path, so the same
    model).

    ``data`` is a pandas DataFrame with one row per (customer, time, item),
    the columns named by ``customer``, ``time`` and ``item`` (customers and
    items of any dtype, categoricals included; times numbers, datetimes,
    timedeltas or ISO-8601 texts), or the path of a CSV/TSV file with a
    header or of an SPMF file (``format`` "auto", "csv" or "spmf";
    ``delimiter`` one character or "tab"). For a file, ``skip_invalid``
    drops bad rows instead of stopping, reporting them on standard error as
    ``mine --skip-invalid`` does, and ``time_format`` reads dates written
    another way (``"%m/%d/%Y %H:%M"``), as ``mine --time-format`` does.

    ``min_support`` is a fraction of the customers (a float, 0 < F <= 1) or
    a count of customers (an int >= 1); None: the lowest support of at most
    ``max_patterns`` patterns (None: 300000 without a min_support, or
    1000000 of at most two items for data of 5000 distinct items or more;
    no budget with one), as ``mine`` chooses it. ``max_items`` the largest
    pattern (1..31; None: 4, or 2 where the budget for many items applies,
    which a ``max_items`` given turns off); ``threads`` the mining threads
    (None: one per core).
    Further keyword arguments are the mining settings the extension knows
    (``_seqlattice.MineSettings``, e.g. ``sequences=False`` to leave the
    customers' sequences out of the model).

    ``min_gap``, ``max_gap``, ``max_span`` and ``window`` limit the times of
    a pattern's occurrences as ``mine --min-gap`` etc. do
    (docs/time-constraints.md): for times that are dates a text with a unit
    ("30d", "12h", "90m", "2w") or a timedelta, otherwise a number in the
    times' own unit. ``gap_stats`` keeps the time from the next-to-last item
    set to the last of every pattern without a limit (always kept with one);
    ``Model.rules`` then has the columns "mean gap", "min gap" and "max gap"
    (days for dates).

    Runs without the GIL. Raises InputError naming the row (or the file and
    line) of bad input, MiningError when the model would not fit in memory.
    """
    core, _ = _mine(data, customer, time, item, min_support, max_patterns,
                    max_items, threads, format, delimiter, options, "mine",
                    skip_invalid=skip_invalid, time_format=time_format,
                    limits={"min_gap": min_gap, "max_gap": max_gap,
                            "max_span": max_span, "window": window},
                    gap_stats=gap_stats)
    return Model(core)


def mine_patterns(data: Data, path: PathLike, *, patterns_format: str = "auto",
                  customer: str = "customer", time: str = "time",
                  item: str = "item", min_support: Union[float, int] = 0.05,
                  max_patterns: Optional[int] = None,
                  max_items: Optional[int] = None,
                  threads: Optional[int] = None,
                  format: str = "auto", delimiter: Optional[str] = None,
                  skip_invalid: bool = False,
                  time_format: Optional[str] = None,
                  min_gap: Optional[Duration] = None,
                  max_gap: Optional[Duration] = None,
                  max_span: Optional[Duration] = None,
                  window: Optional[Duration] = None,
                  **options: Any) -> dict[str, Any]:
    """Mines the frequent patterns of a log, as :func:`mine` does, straight
    into a pattern file instead of a model, as ``seqlattice mine
    --patterns-only`` does: it needs no memory for a model, so it finishes
    searches whose model would not fit.

    ``patterns_format`` is "spmf", "json" (one JSON object a line) or "auto"
    (json for .json, .jsonl and .ndjson files). The time constraints are
    :func:`mine`'s. Returns the miner's summary: customers, min count,
    patterns and patterns per size (from 1 item).
    """
    if patterns_format not in ("auto", "spmf", "json"):
        raise ValueError('patterns_format: expected "auto", "spmf" or '
                         f'"json", not "{patterns_format}"')
    path = os.fspath(path)
    if not path:
        raise ValueError("path: expected a file name")
    _, summary = _mine(data, customer, time, item, min_support, max_patterns,
                       max_items, threads, format, delimiter, options,
                       "mine_patterns", path, patterns_format,
                       skip_invalid=skip_invalid, time_format=time_format,
                       limits={"min_gap": min_gap, "max_gap": max_gap,
                               "max_span": max_span, "window": window})
    return summary


def read_log(path: PathLike, *, customer: str = "customer",
             time: str = "time", item: str = "item", format: str = "auto",
             delimiter: Optional[str] = None, skip_invalid: bool = False,
             time_format: Optional[str] = None) -> pd.DataFrame:
    """A transaction file (CSV/TSV with a header, or SPMF) as a DataFrame
    with the columns customer, time and item, one row per item occurrence,
    read as :func:`mine` reads it: a CSV's dates become seconds since
    1970-01-01 UTC, an SPMF file's customers are numbered from "1", its item
    sets are timed by their position and its items are integers.
    ``skip_invalid`` and ``time_format`` as for :func:`mine`."""
    options = _input_options(customer, time, item, format, delimiter,
                             skip_invalid, time_format)
    return _frame_of(_seqlattice.read_log(os.fspath(path), options))


def load(path: PathLike) -> Model:
    """Reads a model file written by ``seqlattice mine``/``convert`` or by
    :meth:`Model.save`, binary or XML."""
    return Model(_seqlattice.Model.load(os.fspath(path)))

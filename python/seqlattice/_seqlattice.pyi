# Types of the extension module; the package's public interface is in
# _model.py. A new mining setting is one attribute here and one def_readwrite
# in python/src/module.cpp; mine() passes it on as a keyword argument.
from typing import Any, Optional

import numpy as np

class Error(RuntimeError): ...
class InputError(Error, ValueError): ...
class MiningError(Error): ...

class MineSettings:
    min_support: str
    max_patterns: int
    max_items: int
    threads: int
    sequences: bool
    time_limit: float
    progress: bool
    min_gap: str
    max_gap: str
    max_span: str
    window: str
    gap_stats: bool

class InputOptions:
    format: str
    customer: str
    time: str
    item: str
    delimiter: str
    skip_invalid: bool
    time_format: str

class PredictSettings:
    current: bool
    last_set_only: bool
    top: int
    rank: str
    new_only: bool
    repeat_only: bool
    explain: bool
    customer: str
    prior: float
    earlier_weight: float
    sequence_weight: float
    context_sets: int
    context_customers: int
    max_dropped: int
    decay: float

class RuleBounds:
    min_support: float
    max_support: float
    min_confidence: float
    max_confidence: float
    min_cause: float
    max_cause: float
    maximal: bool
    sort: str

class RuleFilters:
    min_lift: float
    antecedent_has: list[str] | None
    consequent: list[str] | None

class PatternQueryKind:
    all: PatternQueryKind
    contains: PatternQueryKind
    beginning: PatternQueryKind
    ending: PatternQueryKind

class PatternQuery:
    kind: PatternQueryKind
    sequence: list[list[str]]
    size: int
    maximal: bool
    min_count: int
    max_count: int

Columns = dict[str, Any]

class PatternModelParts:
    settings: MineSettings
    customers: int
    min_count: int
    transactions: int
    item_occurrences: int
    widest: int
    input_name: str
    input_format: str
    item_labels: list[str]
    def __init__(self) -> None: ...
    def set_sequences(self, items: np.ndarray, set_starts: np.ndarray,
                      customer_starts: np.ndarray) -> None: ...

class Model:
    @staticmethod
    def mine_file(path: str, options: InputOptions, settings: MineSettings,
                  pattern_file: str,
                  pattern_format: str) -> tuple[Model, dict[str, Any]]: ...
    @staticmethod
    def mine_columns(customer: np.ndarray, time: np.ndarray,
                     item: np.ndarray, customers: int,
                     item_labels: list[str], settings: MineSettings,
                     input_name: str, pattern_file: str,
                     pattern_format: str, dated: bool = ...
                     ) -> tuple[Model, dict[str, Any]]: ...
    @staticmethod
    def from_records(records: np.ndarray,
                     parts: PatternModelParts) -> Model: ...
    @staticmethod
    def load(path: str) -> Model: ...
    def save(self, path: str, xml: bool) -> None: ...
    def rules(self, bounds: RuleBounds, filters: RuleFilters,
              top: int) -> tuple[Columns, list[str]]: ...
    def patterns(self, query: PatternQuery) -> tuple[Columns, list[str]]: ...
    def predict_history(self, history: list[list[str]],
                        settings: PredictSettings
                        ) -> tuple[Columns, list[str]]: ...
    def predict_file(self, path: str, options: InputOptions,
                     settings: PredictSettings) -> Columns: ...
    def predict_columns(self, customer: np.ndarray, time: np.ndarray,
                        item: np.ndarray, customers: int,
                        item_labels: list[str],
                        settings: PredictSettings) -> Columns: ...
    def info(self) -> dict[str, Any]: ...
    def to_pmml(self, path: str, bounds: RuleBounds) -> None: ...
    def to_lattice_xml(self, path: str, min_support: float) -> None: ...
    def to_dot(self, path: str, top: int) -> None: ...

def read_log(path: str, options: InputOptions) -> Columns: ...
def parse_times(texts: list[str]) -> tuple[np.ndarray, np.ndarray]: ...
def parse_item_sequence(text: str) -> list[list[str]]: ...
def mine_partition(customer: np.ndarray, time: np.ndarray, item: np.ndarray,
                   customers: int, item_labels: list[str], min_count: int,
                   max_items: int, threads: int, max_candidates: int,
                   sequences: bool
                   ) -> tuple[np.ndarray, int, dict[str, int],
                              Optional[tuple[np.ndarray, np.ndarray,
                                             np.ndarray]]]: ...
def count_partition(customer: np.ndarray, time: np.ndarray, item: np.ndarray,
                    customers: int, item_labels: list[str],
                    candidates: np.ndarray, threads: int
                    ) -> tuple[np.ndarray, np.ndarray]: ...
def item_codes(labels: list[str]) -> list[int]: ...
def union_records(parts: list[np.ndarray]) -> tuple[np.ndarray, int]: ...
def keep_frequent(candidates: np.ndarray, counts: np.ndarray,
                  first_customers: np.ndarray,
                  min_count: int) -> tuple[np.ndarray, int]: ...

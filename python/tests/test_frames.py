"""DataFrames of every column dtype are mined as the same log written to a
CSV file would be; bad frames are refused naming the row."""

from __future__ import annotations

import numpy as np
import pandas as pd
import pytest

import seqlattice
from conftest import records

# Three customers; ann buys milk then bread twice, bob milk then bread, cy
# milk and tea together. Row order is not time order.
ROWS = [("ann", 2, "bread"), ("ann", 1, "milk"), ("bob", 1, "milk"),
        ("bob", 5, "bread"), ("cy", 3, "milk"), ("cy", 3, "tea"),
        ("ann", 4, "bread")]
EXPECTED_PATTERNS = [
    {"pattern": [["milk"]], "items": 1, "count": 3, "support": 1.0},
    {"pattern": [["bread"]], "items": 1, "count": 2,
     "support": 2 / 3},
    {"pattern": [["milk"], ["bread"]], "items": 2, "count": 2,
     "support": 2 / 3},
]


def frame(customer=None, time=None, item=None) -> pd.DataFrame:
    customers, times, items = zip(*ROWS)
    return pd.DataFrame({
        "customer": list(customers) if customer is None else customer,
        "time": list(times) if time is None else time,
        "item": list(items) if item is None else item,
    })


def mined(data: pd.DataFrame, **options) -> list[dict]:
    return records(seqlattice.mine(data, min_support=2, **options).patterns())


def test_string_columns():
    assert mined(frame()) == EXPECTED_PATTERNS


def test_the_same_log_from_a_csv_file(tmp_path):
    frame().to_csv(tmp_path / "log.csv", index=False)
    assert mined(frame()) == records(seqlattice.mine(
        str(tmp_path / "log.csv"), min_support=2).patterns())


@pytest.mark.parametrize("dtype", ["int64", "int32", "uint16", "Int64"])
def test_integer_customers(dtype):
    customers = pd.Series([7, 7, 8, 8, 9, 9, 7], dtype=dtype)
    assert mined(frame(customer=customers)) == EXPECTED_PATTERNS


def test_categorical_columns_with_unused_categories():
    customers = pd.Categorical([c for c, _, _ in ROWS],
                               categories=["zed", "cy", "bob", "ann"])
    items = pd.Categorical([i for _, _, i in ROWS],
                           categories=["tea", "unsold", "milk", "bread"])
    times = pd.Categorical([t for _, t, _ in ROWS])
    model = seqlattice.mine(frame(customer=customers, time=times, item=items),
                            min_support=2)
    assert records(model.patterns()) == EXPECTED_PATTERNS
    # An unused category takes no item code: the codes are those of a file.
    assert model.info()["labelled items"] == 3


@pytest.mark.parametrize("times", [
    pd.to_datetime(["2024-01-02", "2024-01-01", "2024-01-01", "2024-01-05",
                    "2024-01-03", "2024-01-03", "2024-01-04"]),
    pd.to_datetime(["2024-01-02", "2024-01-01", "2024-01-01", "2024-01-05",
                    "2024-01-03", "2024-01-03",
                    "2024-01-04"]).tz_localize("Europe/Paris"),
    pd.to_timedelta([2, 1, 1, 5, 3, 3, 4], unit="h"),
    [2.5, 1.0, 1.0, 5.0, 3.0, 3.0, 4.0],
    ["2", "1", "1", "5", "3", "3", "4"],
    ["2024-01-02", "2024-01-01", "2024-01-01T08:00", "2024-01-05",
     "2024-01-03", "2024-01-03", "2024-01-04"],
])
def test_time_dtypes(times):
    assert mined(frame(time=times)) == EXPECTED_PATTERNS


def test_integer_items_are_their_own_codes():
    items = [{"milk": 10, "bread": 20, "tea": 30}[i] for _, _, i in ROWS]
    patterns = mined(frame(item=items))
    assert [p["pattern"] for p in patterns] == [[["10"]], [["20"]],
                                                [["10"], ["20"]]]


def test_custom_column_names_and_other_columns():
    data = frame().rename(columns={"customer": "client", "time": "day",
                                   "item": "product"})
    data["price"] = 1.5
    assert mined(data, customer="client", time="day",
                 item="product") == EXPECTED_PATTERNS


def test_a_frame_with_one_customer():
    data = pd.DataFrame({"customer": ["ann"] * 3, "time": [1, 2, 2],
                         "item": ["milk", "bread", "tea"]})
    model = seqlattice.mine(data, min_support=1.0)
    assert model.info()["customers (N)"] == 1
    assert model.info()["patterns"] == 7
    assert records(model.patterns(size=3)) == [
        {"pattern": [["milk"], ["bread", "tea"]], "items": 3, "count": 1,
         "support": 1.0}]


def test_an_empty_frame_is_refused():
    with pytest.raises(seqlattice.InputError,
                       match="^DataFrame: no data rows$"):
        seqlattice.mine(frame().iloc[0:0])


@pytest.mark.parametrize("column, value, problem", [
    ("customer", None, "missing customer"),
    ("customer", "", "empty customer"),
    ("item", np.nan, "missing item"),
    ("item", "", "empty item"),
    ("time", np.nan, "missing time"),
    ("time", "soon", 'bad time "soon": expected a number or an ISO-8601 '
                     "date"),
])
def test_a_bad_value_is_refused_naming_its_row(column, value, problem):
    data = frame().astype({"time": object})
    data.index = [f"r{i}" for i in range(len(data))]
    data.loc["r4", column] = value
    with pytest.raises(seqlattice.InputError) as raised:
        seqlattice.mine(data)
    assert str(raised.value) == f"DataFrame row 4 (index 'r4'): {problem}"


def test_a_missing_datetime_is_refused_naming_its_row():
    times = pd.to_datetime(["2024-01-02"] * 7)
    times = times.where(np.arange(7) != 5)
    with pytest.raises(seqlattice.InputError,
                       match=r"^DataFrame row 5 \(index 5\): missing time$"):
        seqlattice.mine(frame(time=times))


def test_a_bad_categorical_time_is_refused_naming_its_row():
    times = pd.Categorical(["1", "2", "3", "4", "later", "5", "6"])
    with pytest.raises(seqlattice.InputError) as raised:
        seqlattice.mine(frame(time=times))
    assert str(raised.value) == ('DataFrame row 4 (index 4): bad time '
                                 '"later": expected a number or an ISO-8601 '
                                 "date")


def test_dates_and_numbers_in_one_column_are_refused():
    times = ["2024-01-02", "2024-01-01", "3", "2024-01-05", "2024-01-03",
             "2024-01-03", "2024-01-04"]
    with pytest.raises(seqlattice.InputError) as raised:
        seqlattice.mine(frame(time=times))
    assert str(raised.value) == ('DataFrame row 2 (index 2): time "3" is a '
                                 "number but row 0 has a date")


def test_a_missing_column_is_refused_naming_the_columns():
    with pytest.raises(seqlattice.InputError) as raised:
        seqlattice.mine(frame(), item="product")
    assert str(raised.value) == ('DataFrame: no column "product" (columns: '
                                 '"customer", "time", "item")')


def test_file_options_and_mining_settings(tmp_path):
    data = frame().rename(columns={"customer": "client"})
    data.to_csv(tmp_path / "log.tab", sep=";", index=False)
    model = seqlattice.mine(tmp_path / "log.tab", customer="client",
                            delimiter=";", format="csv", min_support=2,
                            threads=1)
    assert records(model.patterns()) == EXPECTED_PATTERNS
    assert model.info()["input format"] == "csv"
    one_item = seqlattice.mine(data, customer="client", min_support=2,
                               max_items=1)
    assert records(one_item.patterns()) == EXPECTED_PATTERNS[:2]
    assert one_item.info()["max items per pattern"] == 1

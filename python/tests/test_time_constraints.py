"""Time constraints and gap statistics as keyword arguments of ``mine`` and
``mine_patterns``: the same model as ``seqlattice mine --max-gap`` etc., the
units of a DataFrame of dates, and the tool's messages."""

from __future__ import annotations

import datetime

import pandas as pd
import pytest

import seqlattice

# Three customers buy a then b: 4, 50 and 2 days later.
DATED = ("customer,time,item\n"
         "c1,2024-01-01,a\n"
         "c1,2024-01-05,b\n"
         "c2,2024-01-01,a\n"
         "c2,2024-02-20,b\n"
         "c3,2024-01-01,a\n"
         "c3,2024-01-03,b\n")


def test_max_gap_mines_the_tools_model(tool, tmp_path):
    log = tmp_path / "dated.csv"
    log.write_text(DATED)
    tool_path = tmp_path / "tool.model"
    tool.run("mine", log, "-o", tool_path, "--min-support", "2",
             "--max-gap", "30d", "--window", "1h")
    model = seqlattice.mine(str(log), min_support=2, max_gap="30d",
                            window=datetime.timedelta(hours=1))
    python_path = tmp_path / "python.model"
    model.save(python_path)
    assert python_path.read_bytes()[:-200] == tool_path.read_bytes()[:-200]
    rules = model.rules()
    assert rules[["support", "mean gap", "min gap", "max gap"]].values.tolist(
    ) == [[pytest.approx(2 / 3), 3.0, 2.0, 4.0]]
    info = model.info()
    assert info["gap statistics"] == "yes"
    assert info["max gap"] == 30 * 86400


def test_a_frame_of_dates_takes_units(tmp_path):
    frame = pd.read_csv(pd.io.common.StringIO(DATED))
    frame["time"] = pd.to_datetime(frame["time"])
    model = seqlattice.mine(frame, min_support=1, max_gap=pd.Timedelta("3d"))
    assert model.rules()[["mean gap", "min gap", "max gap"]].values.tolist(
    ) == [[2.0, 2.0, 2.0]]
    with pytest.raises(seqlattice.Error,
                       match=r"--max-gap 3: the log's times are dates"):
        seqlattice.mine(frame, min_support=2, max_gap=3)


def test_numbers_take_plain_durations_and_gap_stats_alone():
    frame = pd.DataFrame({"customer": [1, 1, 2, 2],
                          "time": [0, 10, 0, 4],
                          "item": ["a", "b", "a", "b"]})
    plain = seqlattice.mine(frame, min_support=1)
    assert plain.info()["gap statistics"] == "no"
    assert list(plain.rules().columns)[-1] == "conviction"
    stats = seqlattice.mine(frame, min_support=1, gap_stats=True)
    assert stats.rules()[["mean gap", "min gap", "max gap"]].values.tolist(
    ) == [[7.0, 4.0, 10.0]]
    limited = seqlattice.mine(frame, min_support=1, min_gap=5)
    assert limited.rules()["support"].tolist() == [0.5]
    with pytest.raises(seqlattice.Error,
                       match=r"--max-gap 3x: unknown unit 'x'"):
        seqlattice.mine(frame, min_support=1, max_gap="3x")
    with pytest.raises(TypeError, match="max_span: expected a duration"):
        seqlattice.mine(frame, min_support=1, max_span=[1])


def test_mine_patterns_keeps_to_the_limits(tmp_path):
    frame = pd.DataFrame({"customer": [1, 1, 2, 2],
                          "time": [0, 10, 0, 4],
                          "item": ["a", "b", "a", "b"]})
    summary = seqlattice.mine_patterns(frame, tmp_path / "p.txt",
                                       min_support=2, max_gap=5)
    assert summary["patterns per size"] == [2]
    summary = seqlattice.mine_patterns(frame, tmp_path / "q.txt",
                                       min_support=2)
    assert summary["patterns per size"] == [2, 1]

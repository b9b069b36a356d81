"""A model saved by Python opens in the tool and the other way round, in
both forms."""

from __future__ import annotations

import pytest

import seqlattice
from conftest import SAMPLE, records


@pytest.mark.parametrize("form", ["binary", "xml"])
def test_python_writes_what_the_tool_reads(tool, sample_frame, tmp_path,
                                           form):
    model = seqlattice.mine(sample_frame, min_support=0.04)
    path = tmp_path / f"python.{form}"
    model.save(path, format=form)
    assert tool.json("rules", path) == records(model.rules())
    assert tool.json("patterns", path) == records(model.patterns())
    info = tool.json("info", path)
    assert info["format"] == form
    assert info["input"] == "DataFrame"
    assert info["input format"] == "dataframe"
    assert info["min count"] == 24


@pytest.mark.parametrize("flag, form", [([], "binary"), (["--xml"], "xml")])
def test_python_reads_what_the_tool_writes(tool, tmp_path, flag, form):
    path = tmp_path / "tool.model"
    tool.run("mine", SAMPLE, "-o", path, "--min-support", "25", *flag)
    model = seqlattice.load(path)
    assert model.info()["format"] == form
    assert model.info()["min support (as given)"] == "25"
    assert records(model.rules()) == tool.json("rules", path)


def test_a_loaded_model_saves_byte_for_byte(tool, tmp_path):
    tool.run("mine", SAMPLE, "-o", tmp_path / "tool.model")
    tool.run("convert", tmp_path / "tool.model", tmp_path / "tool.xml")
    model = seqlattice.load(tmp_path / "tool.model")
    model.save(tmp_path / "again.model")
    model.save(tmp_path / "again.xml", format="xml")
    assert (tmp_path / "again.model").read_bytes() == \
        (tmp_path / "tool.model").read_bytes()
    assert (tmp_path / "again.xml").read_bytes() == \
        (tmp_path / "tool.xml").read_bytes()


@pytest.mark.parametrize("name, flags", [("patterns.txt", []),
                                         ("patterns.jsonl", []),
                                         ("patterns.out",
                                          ["--patterns-format", "json"])])
def test_pattern_files_equal_the_tools(tool, sample_frame, tmp_path, name,
                                       flags):
    tool.run("mine", SAMPLE, "--patterns-only", tmp_path / f"tool-{name}",
             "--min-support", "0.04", *flags)
    form = "json" if flags else "auto"
    summary = seqlattice.mine_patterns(sample_frame, tmp_path / name,
                                       min_support=0.04,
                                       patterns_format=form, threads=1)
    assert summary["customers"] == 600
    assert summary["min count"] == 24
    assert summary["patterns"] == 500
    assert sum(summary["patterns per size"]) == 500
    python_lines = (tmp_path / name).read_text().splitlines()
    tool_lines = (tmp_path / f"tool-{name}").read_text().splitlines()
    assert len(tool_lines) >= 500
    assert sorted(python_lines) == sorted(tool_lines)

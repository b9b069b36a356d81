"""The forgiving import options of ``seqlattice mine`` as keyword arguments:
the same rows kept, the same model, the same messages."""

from __future__ import annotations

import pytest

import seqlattice

# Line 3 has a blank customer and line 5 a time the format does not fit:
# skipping them leaves ann with two orders and bob with one.
US_DATES = ("customer,time,item\n"
            "ann,12/1/2010 8:26,tea\n"
            ",12/1/2010 9:00,milk\n"
            "ann,12/3/2010 10:15,cups\n"
            "bob,2010-12-01,tea\n"
            "bob,12/4/2010 7:05,cups\n")


def test_skip_invalid_and_time_format_mine_as_the_tool(tool, tmp_path):
    log = tmp_path / "us.csv"
    log.write_text(US_DATES)
    model_path = tmp_path / "tool.model"
    done = tool.run("mine", log, "-o", model_path, "--min-support", "1",
                    "--skip-invalid", "--time-format", "%m/%d/%Y %H:%M")
    assert "skipped rows" in done.stdout
    model = seqlattice.mine(str(log), min_support=1, skip_invalid=True,
                            time_format="%m/%d/%Y %H:%M")
    assert model.info()["customers (N)"] == 2
    assert model.info()["transactions"] == 3
    python_path = tmp_path / "python.model"
    model.save(python_path)
    assert seqlattice.load(python_path).patterns().equals(
        seqlattice.load(model_path).patterns())


def test_a_row_the_time_format_does_not_fit_names_its_line(tool, tmp_path):
    log = tmp_path / "us.csv"
    log.write_text(US_DATES.replace(",12/1/2010 9:00,milk\n", ""))
    expected = tool.error("mine", log, "-o", tmp_path / "m.model",
                          "--time-format", "%m/%d/%Y %H:%M")
    assert expected.startswith(f"{log}:4: ")
    with pytest.raises(seqlattice.InputError) as raised:
        seqlattice.mine(str(log), time_format="%m/%d/%Y %H:%M")
    assert str(raised.value) == expected


def test_a_bad_time_format_is_refused():
    with pytest.raises(ValueError) as raised:
        seqlattice.read_log("unused.csv", time_format="%Q")
    assert str(raised.value).startswith("time_format: ")


def test_a_data_frame_takes_neither_option(sample_frame):
    with pytest.raises(ValueError) as raised:
        seqlattice.mine(sample_frame, skip_invalid=True)
    assert "skip_invalid and time_format read text files" in str(raised.value)

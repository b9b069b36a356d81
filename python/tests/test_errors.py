"""Errors are Python exceptions carrying the tool's messages."""

from __future__ import annotations

import pytest

import seqlattice
from conftest import SAMPLE


def raised_by(call, error_type) -> BaseException:
    with pytest.raises(error_type) as raised:
        call()
    return raised.value


def test_a_bad_csv_line_names_the_file_and_line(tool, tmp_path):
    path = tmp_path / "orders.csv"
    path.write_text("customer,time,item\nann,1,milk\nbob,2\n")
    expected = tool.error("mine", path, "-o", tmp_path / "m.model")
    assert expected == f"{path}:3: expected 3 columns, found 2"
    error = raised_by(lambda: seqlattice.mine(str(path)),
                      seqlattice.InputError)
    assert str(error) == expected
    assert isinstance(error, ValueError)
    assert isinstance(error, seqlattice.Error)


def damage(path):
    data = bytearray(path.read_bytes())
    data[40] ^= 0xFF
    path.write_bytes(bytes(data))


@pytest.mark.parametrize("name, content, command, call, error_type, problem", [
    ("absent.csv", None, "mine", seqlattice.mine, seqlattice.InputError,
     "cannot open: No such file or directory"),
    ("log.txt", "1 -1 2 -1 -2\n3 x -1 -2\n", "mine", seqlattice.mine,
     seqlattice.InputError, None),
    ("not.model", "this is not a model file at all\n", "info",
     seqlattice.load, seqlattice.Error,
     "not a seqlattice model file (no end mark)"),
    ("damaged.model", damage, "rules", seqlattice.load, seqlattice.Error,
     "damaged dictionary record (checksum mismatch)"),
])
def test_file_errors_carry_the_tools_message(tool, tmp_path, name, content,
                                             command, call, error_type,
                                             problem):
    path = tmp_path / name
    if callable(content):
        tool.run("mine", SAMPLE, "-o", path)
        content(path)
    elif content is not None:
        path.write_text(content)
    args = ["-o", tmp_path / "m.model"] if command == "mine" else []
    expected = tool.error(command, path, *args)
    if problem is None:
        assert expected.startswith(f"{path}:2: ")
    else:
        assert expected == f"{path}: {problem}"
    assert str(raised_by(lambda: call(path), error_type)) == expected


@pytest.mark.parametrize("value, text", [(0, "0"), (1.5, "1.5"),
                                         ("-3", "-3")])
def test_a_bad_min_support_gets_the_tools_reason(value, text):
    with pytest.raises(ValueError) as raised:
        seqlattice.mine(SAMPLE, min_support=value)
    assert str(raised.value) == (
        "min_support: expected a fraction of the customers (0 < F <= 1) or "
        f'a count of customers (N >= 1), not "{text}"')


def test_bad_arguments():
    with pytest.raises(ValueError, match=r"^max_items: 40 is not within "
                                         r"\[1, 31\]$"):
        seqlattice.mine(SAMPLE, max_items=40)
    with pytest.raises(TypeError, match="unexpected keyword argument "
                                        "'min_suport'"):
        seqlattice.mine(SAMPLE, min_suport=0.1)
    with pytest.raises(ValueError, match='^delimiter: expected one '
                                         'character'):
        seqlattice.mine(SAMPLE, delimiter=";;")
    with pytest.raises(TypeError, match="^data: expected a pandas "
                                        "DataFrame or a path, not int$"):
        seqlattice.mine(42)
    model = seqlattice.mine(SAMPLE)
    with pytest.raises(ValueError, match=r"^min_cause: 2.0 is not within "
                                         r"\[0, 1\]$"):
        model.rules(min_cause=2)
    with pytest.raises(ValueError, match='^sort: expected "support", '
                                         '"confidence", "cause", "lift", '
                                         '"leverage" or "conviction", not '
                                         '"height"$'):
        model.rules(sort="height")
    # The PMML document orders rules by the library's measures only.
    with pytest.raises(ValueError, match='^sort: expected "support", '
                                         '"confidence" or "cause", not '
                                         '"lift"$'):
        model.to_pmml("x.pmml", sort="lift")
    with pytest.raises(ValueError, match="^min_lift: -1.0 is not at least "
                                         "0$"):
        model.rules(min_lift=-1)
    with pytest.raises(ValueError, match="^consequent: one item set "
                                         "expected, items separated by "
                                         "','$"):
        model.rules(consequent="a;b")
    with pytest.raises(ValueError) as raised:
        model.predict("a,,b")
    assert str(raised.value) == '"a,,b": empty item (write item sets as ' \
                                '"a,b;c")'
    with pytest.raises(ValueError, match='^format: expected "binary" or '
                                         '"xml", not "json"$'):
        model.save("x", format="json")


def test_a_model_beyond_the_pattern_length_is_refused():
    with pytest.raises(ValueError, match=r"^max_items: 0 is not within"):
        seqlattice.mine(SAMPLE, max_items=0)

"""Rules, patterns, predictions, info and documents from Python equal the
tool's on the same model: the bundled sample and a public database."""

from __future__ import annotations

import pathlib

import pandas as pd
import pytest

import seqlattice
from conftest import SAMPLE, records


@pytest.fixture(scope="module")
def sample_model(tool, tmp_path_factory) -> pathlib.Path:
    path = tmp_path_factory.mktemp("sample") / "orders.model"
    tool.run("mine", SAMPLE, "-o", path, "--min-support", "0.03")
    return path


def test_mining_a_file_writes_the_tools_model_byte_for_byte(
        tool, sample_model, tmp_path):
    model = seqlattice.mine(str(SAMPLE), min_support=0.03)
    model.save(tmp_path / "python.model")
    # The trailer names the input as given, so give it the same way.
    assert (tmp_path / "python.model").read_bytes() == \
        sample_model.read_bytes()


@pytest.mark.parametrize("args, kwargs", [
    ((), {}),
    (("--max-patterns", "200"), {"max_patterns": 200}),
    (("--min-support", "0.05", "--max-patterns", "300", "--no-sequences"),
     {"min_support": 0.05, "max_patterns": 300, "sequences": False}),
])
def test_mining_defaults_and_budget_equal_the_tools(tool, tmp_path, args,
                                                    kwargs):
    tool.run("mine", SAMPLE, "-o", tmp_path / "tool.model", *args)
    model = seqlattice.mine(str(SAMPLE), **kwargs)
    model.save(tmp_path / "python.model")
    assert (tmp_path / "python.model").read_bytes() == \
        (tmp_path / "tool.model").read_bytes()
    assert records(model.patterns()) == tool.json("patterns",
                                                  tmp_path / "tool.model")


def test_a_log_of_many_items_is_mined_as_the_tool_mines_it(tool, tmp_path):
    # 5,000 customers over a ring of 5,000 items: customer k holds (k) (k+1)
    # (k+2), enough distinct items for the larger budget of pairs.
    ring = tmp_path / "ring.txt"
    ring.write_text("".join(
        f"{k} -1 {(k + 1) % 5000} -1 {(k + 2) % 5000} -1 -2\n"
        for k in range(5000)))
    for args, kwargs, largest in (((), {}, 2),
                                  (("--max-items", "4"), {"max_items": 4}, 4)):
        tool.run("mine", ring, "-o", tmp_path / "tool.model", *args)
        model = seqlattice.mine(str(ring), **kwargs)
        model.save(tmp_path / "python.model")
        assert (tmp_path / "python.model").read_bytes() == \
            (tmp_path / "tool.model").read_bytes()
        assert model.info()["max items per pattern"] == largest


def test_mining_the_frame_finds_the_tools_patterns(tool, sample_model,
                                                   sample_frame):
    model = seqlattice.mine(sample_frame, min_support=0.03)
    assert records(model.patterns()) == tool.json("patterns", sample_model)
    assert records(model.rules()) == tool.json("rules", sample_model)


@pytest.mark.parametrize("command, args, kwargs", [
    ("rules", (), {}),
    ("rules", ("--top", "10", "--min-cause", "0.2"),
     {"top": 10, "min_cause": 0.2}),
    ("rules", ("--sort", "support", "--maximal", "--min-confidence", "0.3"),
     {"sort": "support", "maximal": True, "min_confidence": 0.3}),
    ("rules", ("--sort", "cause", "--max-support", "0.1"),
     {"sort": "cause", "max_support": 0.1}),
    ("rules", ("--sort", "lift", "--min-lift", "1.5", "--top", "20"),
     {"sort": "lift", "min_lift": 1.5, "top": 20}),
    ("rules", ("--sort", "conviction", "--consequent", "gooseneck kettle"),
     {"sort": "conviction", "consequent": ["gooseneck kettle"]}),
    ("rules", ("--sort", "leverage", "--antecedent-has",
               "paper filters,pour-over dripper"),
     {"sort": "leverage",
      "antecedent_has": "paper filters,pour-over dripper"}),
    ("patterns", (), {}),
    ("patterns", ("--size", "2", "--min-count", "40"),
     {"size": 2, "min_count": 40}),
    ("patterns", ("--beginning", "espresso machine"),
     {"beginning": [["espresso machine"]]}),
    ("patterns", ("--ending", "coffee beans"), {"ending": "coffee beans"}),
    ("patterns", ("--contains", "milk frother;descaler", "--max-count", "60"),
     {"contains": "milk frother;descaler", "max_count": 60}),
    ("patterns", ("--maximal",), {"maximal": True}),
])
def test_rules_and_patterns_equal_the_tools(tool, sample_model, command,
                                            args, kwargs):
    model = seqlattice.load(sample_model)
    expected = tool.json(command, sample_model, *args)
    assert len(expected) > 0
    assert records(getattr(model, command)(**kwargs)) == expected


def test_rule_measures_equal_the_tools(tool, sample_model):
    model = seqlattice.load(sample_model)
    frame = model.rules()
    expected = tool.json("rules", sample_model)
    assert len(frame) == len(expected) > 0
    measures = ("lift", "leverage", "conviction")
    for row, tool_row in zip(records(frame[list(measures)]), expected):
        assert row == {name: tool_row[name] for name in measures}


def test_a_rule_that_never_fails_has_infinite_conviction(tool, tmp_path):
    # N = 4; jam bought twice by ann and bob, so (jam) => (jam) never fails:
    # lift 1 / (2/4) = 2, leverage 0.5 - 0.5 * 0.5 = 0.25.
    frame = pd.DataFrame({
        "customer": ["ann", "ann", "ann", "bob", "bob", "bob", "cid", "dan"],
        "time": [1, 2, 3, 1, 2, 3, 1, 1],
        "item": ["jam", "pot", "jam", "jam", "pot", "jam", "pot", "tea"],
    })
    frame.to_csv(tmp_path / "jam.csv", index=False)
    tool.run("mine", tmp_path / "jam.csv", "-o", tmp_path / "jam.model",
             "--min-support", "2")
    rules = seqlattice.mine(frame, min_support=2).rules()
    certain = rules[rules["antecedent"] == (("jam",),)]
    certain = certain[certain["consequent"] == (("jam",),)]
    assert certain[["lift", "leverage", "conviction"]].values.tolist() == [
        [2.0, 0.25, float("inf")]]
    # The tool's JSON has no infinity: the same rule shows null there.
    assert records(rules) == tool.json("rules", tmp_path / "jam.model")


def test_an_unknown_filter_item_warns_as_the_tool(tool, sample_model):
    model = seqlattice.load(sample_model)
    done = tool.run("rules", sample_model, "--consequent", "teapot from mars")
    assert done.stderr == ('seqlattice: rules: item "teapot from mars" is '
                           "not in the model\n")
    with pytest.warns(UserWarning,
                      match='rules: item "teapot from mars" is not in the '
                            "model"):
        result = model.rules(consequent="teapot from mars")
    assert len(result) == 0
    assert list(result.columns) == [
        "rank", "antecedent", "consequent", "support", "confidence", "cause",
        "lift", "leverage", "conviction"]


@pytest.mark.parametrize("args, kwargs", [
    ((), {}),
    (("--top", "3"), {"top": 3}),
    (("--current",), {"current": True}),
    (("--last-set-only",), {"last_set_only": True}),
    (("--rank", "lift"), {"rank": "lift"}),
    (("--rank", "confidence"), {"rank": "confidence"}),
    (("--new-only",), {"new_only": True}),
    (("--repeat-only", "--top", "2"), {"repeat_only": True, "top": 2}),
    (("--explain",), {"explain": True}),
    (("--prior", "1", "--sequence-weight", "0.2", "--earlier-weight", "0.4"),
     {"prior": 1.0, "sequence_weight": 0.2, "earlier_weight": 0.4}),
    (("--context-sets", "2", "--context-customers", "5", "--max-dropped",
      "1", "--decay", "0.5"),
     {"context_sets": 2, "context_customers": 5, "max_dropped": 1,
      "decay": 0.5}),
    (("--next-weight", "0.5", "--explain"),
     {"next_weight": 0.5, "explain": True}),
    (("--popularity-power", "0.5", "--explain"),
     {"popularity_power": 0.5, "explain": True}),
])
def test_predictions_equal_the_tools(tool, sample_model, args, kwargs):
    model = seqlattice.load(sample_model)
    history = "espresso machine,milk frother;coffee beans"
    expected = tool.json("predict", sample_model, "--history", history, *args)
    assert len(expected) > 0
    assert records(model.predict(history, **kwargs)) == expected
    as_lists = [["espresso machine", "milk frother"], ["coffee beans"]]
    assert records(model.predict(as_lists, **kwargs)) == expected


def test_batch_predictions_equal_the_tools(tool, sample_model, sample_frame,
                                           tmp_path):
    recent = sample_frame[sample_frame["customer"] < "C0100"]
    path = tmp_path / "recent.csv"
    recent.to_csv(path, index=False, date_format="%Y-%m-%d")
    expected = tool.json("predict", sample_model, "--input", path, "--top",
                         "3")
    assert len(expected) == 99 * 3
    model = seqlattice.load(sample_model)
    assert records(model.predict(recent, top=3)) == expected
    assert records(model.predict(path, top=3)) == expected
    assert list(expected[0]) == ["customer", "rank", "item", "score",
                                 "source", "confidence", "support", "cause"]


def test_one_customer_of_a_log_predicts_as_the_tool(tool, sample_model,
                                                    sample_frame, tmp_path):
    recent = sample_frame[sample_frame["customer"] < "C0100"]
    path = tmp_path / "recent.csv"
    recent.to_csv(path, index=False, date_format="%Y-%m-%d")
    expected = tool.json("predict", sample_model, "--input", path,
                         "--customer", "C0042", "--explain")
    assert [row["customer"] for row in expected] == ["C0042"] * 5
    model = seqlattice.load(sample_model)
    assert records(model.predict(recent, only_customer="C0042",
                                 explain=True)) == expected
    assert records(model.predict(path, only_customer="C0042",
                                 explain=True)) == expected
    with pytest.raises(seqlattice.Error, match='no customer "C9999"'):
        model.predict(recent, only_customer="C9999")


def test_a_new_customer_and_unknown_items_predict_as_the_tool(
        tool, sample_model):
    model = seqlattice.load(sample_model)
    assert records(model.predict([])) == tool.json(
        "predict", sample_model, "--history", "")
    expected = tool.json("predict", sample_model, "--history",
                         "espresso machine;teapot from mars")
    with pytest.warns(UserWarning,
                      match='predict: item "teapot from mars" is not in '
                            "the model"):
        result = model.predict("espresso machine;teapot from mars")
    assert records(result) == expected


def test_info_equals_the_tools(tool, sample_model):
    assert seqlattice.load(sample_model).info() == tool.json("info",
                                                             sample_model)


@pytest.mark.parametrize("method, kwargs, command", [
    ("to_pmml", {"min_confidence": 0.3}, ["export", "pmml",
                                           "--min-confidence", "0.3"]),
    ("to_lattice_xml", {}, ["export", "lattice"]),
    ("to_dot", {"top": 12}, ["export", "dot", "--top", "12"]),
])
def test_documents_equal_the_tools(tool, sample_model, tmp_path, method,
                                   kwargs, command):
    model = seqlattice.load(sample_model)
    getattr(model, method)(tmp_path / "python.out", **kwargs)
    tool.run(*command[:2], sample_model, "-o", tmp_path / "tool.out",
             *command[2:])
    python_bytes = (tmp_path / "python.out").read_bytes()
    assert len(python_bytes) > 500
    assert python_bytes == (tmp_path / "tool.out").read_bytes()


def test_a_public_database_gives_the_tools_answers(tool, shared_data,
                                                   tmp_path):
    spmf = shared_data / "IBM_QUEST_10k.txt"
    tool.run("mine", spmf, "-o", tmp_path / "quest.model", "--min-support",
             "0.1")
    frame = seqlattice.read_log(spmf)
    assert len(frame) == 241219
    model = seqlattice.mine(frame, min_support=0.1)
    expected_patterns = tool.json("patterns", tmp_path / "quest.model")
    assert len(expected_patterns) > 1000
    assert records(model.patterns()) == expected_patterns
    assert records(model.rules(min_confidence=0.5)) == tool.json(
        "rules", tmp_path / "quest.model", "--min-confidence", "0.5")
    history = "1,2;8"
    assert records(model.predict(history)) == tool.json(
        "predict", tmp_path / "quest.model", "--history", history)
    few = frame[frame["customer"].isin([str(c) for c in range(1, 51)])]
    few_path = tmp_path / "few.csv"
    few.to_csv(few_path, index=False)
    assert records(model.predict(few)) == tool.json(
        "predict", tmp_path / "quest.model", "--input", few_path)

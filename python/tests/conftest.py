"""Fixtures of the package's tests: the seqlattice tool to compare with, the
bundled sample, and the public databases of ../shared/data when present.

The tool is found through SEQLATTICE_CLI (make test-python sets it), else in
build/release of the repository.
"""

from __future__ import annotations

import json
import math
import os
import pathlib
import subprocess

import pandas as pd
import pytest

REPO = pathlib.Path(__file__).resolve().parents[2]
SAMPLE = REPO / "data" / "sample" / "orders.csv"
SHARED_DATA = REPO.parent / "shared" / "data"


@pytest.fixture(scope="session")
def cli() -> pathlib.Path:
    path = pathlib.Path(os.environ.get(
        "SEQLATTICE_CLI", REPO / "build" / "release" / "cli" / "seqlattice"))
    if not path.exists():
        pytest.fail(f"the seqlattice tool is not built: {path}")
    return path


class Tool:
    """Runs the seqlattice tool and reads its results."""

    def __init__(self, path: pathlib.Path) -> None:
        self.path = path

    def run(self, *args: object, check: bool = True):
        done = subprocess.run([str(self.path), *map(str, args)],
                              capture_output=True, text=True)
        if check and done.returncode != 0:
            raise AssertionError(f"seqlattice {args} failed: {done.stderr}")
        return done

    def json(self, *args: object):
        return json.loads(self.run(*args, "--format", "json").stdout)

    def error(self, *args: object) -> str:
        """The message of a failing command, without the tool's prefix."""
        done = self.run(*args, check=False)
        assert done.returncode == 1, done.stderr
        first = done.stderr.splitlines()[0]
        assert first.startswith("seqlattice: ")
        return first[len("seqlattice: "):]


@pytest.fixture(scope="session")
def tool(cli: pathlib.Path) -> Tool:
    return Tool(cli)


@pytest.fixture(scope="session")
def sample_frame() -> pd.DataFrame:
    return pd.read_csv(SAMPLE, parse_dates=["time"])


@pytest.fixture(scope="session")
def shared_data() -> pathlib.Path:
    if not SHARED_DATA.is_dir():
        pytest.skip(f"public databases not found: {SHARED_DATA} is absent")
    return SHARED_DATA


def records(frame: pd.DataFrame) -> list[dict]:
    """A result DataFrame as the tool's JSON rows: item sequences as nested
    lists, numbers as Python numbers, an infinite number (a rule's
    conviction) as the JSON's null."""
    def plain(value):
        if isinstance(value, tuple):
            return [plain(v) for v in value]
        value = value.item() if hasattr(value, "item") else value
        return None if isinstance(value, float) and math.isinf(value) \
            else value
    return [{column: plain(value) for column, value in row.items()}
            for row in frame.to_dict(orient="records")]

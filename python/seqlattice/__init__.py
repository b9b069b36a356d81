"""seqlattice: sequential association models of customer logs, from pandas.

Mine a DataFrame (or a CSV/TSV/SPMF file) into a model of its frequent
sequence patterns, then list its rules and patterns, predict customers' next
items, and read and write the model files of the ``seqlattice`` tool::

    import pandas as pd
    import seqlattice

    orders = pd.read_csv("data/sample/orders.csv", parse_dates=["time"])
    model = seqlattice.mine(orders, min_support=0.03)
    model.rules(min_cause=0.2, top=10)
    model.predict("espresso machine,milk frother;coffee beans")
    model.save("orders.model")

Errors carry the tool's messages: InputError (bad input, naming the row or
the file and line), MiningError (a model beyond free memory), and Error for
the rest (a model file that cannot be read, ...).
"""

from ._model import Model, load, mine, mine_patterns, read_log
from ._seqlattice import Error, InputError, MiningError

__all__ = ["Error", "InputError", "MiningError", "Model", "load", "mine", "mine_patterns",
           "read_log"]
__version__ = "0.1.0"

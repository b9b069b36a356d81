#!/usr/bin/env python3
"""Writes orders.csv: the order log of a small coffee and kitchen shop.

The log is made up, deterministically (fixed seed, Python 3 standard library
only), so that running this script again writes the same file byte for byte.
Each customer places a few orders over the year 2024; an order is a set of
products bought on one day. Besides random purchases drawn by popularity,
some customers follow one of the planted journeys below, so the log holds
sequential patterns a miner should find. See README.md.

Usage: python3 data/sample/generate.py [OUTPUT]   (default: orders.csv here)
"""

import csv
import datetime
import os
import random
import sys

SEED = 20240101
CUSTOMERS = 600
YEAR_START = datetime.date(2024, 1, 1)
YEAR_DAYS = 366

# Product and its weight in random purchases.
PRODUCTS = {
    "coffee beans": 30,
    "ground coffee": 14,
    "espresso machine": 3,
    "descaler": 4,
    "milk frother": 4,
    "espresso cups": 5,
    "grinder": 3,
    "pour-over dripper": 3,
    "paper filters": 10,
    "gooseneck kettle": 2,
    "french press": 3,
    "travel mug": 6,
    "loose leaf tea": 9,
    "tea infuser": 4,
    "teapot": 3,
    "honey": 6,
    "biscotti": 9,
    "chocolate": 8,
    "chef knife": 2,
    "knife sharpener": 2,
    "cutting board": 4,
    "cast iron pan": 2,
    "pan scraper": 3,
    "apron": 3,
    "oven mitts": 3,
    "dish towels": 6,
}

# Planted journeys: a share of customers buys these item sets in this order,
# each step in a later order than the one before, with some steps skipped.
JOURNEYS = [
    # (share of customers, steps, chance each step after the first happens)
    (0.20, [["espresso machine"], ["coffee beans"], ["descaler"]], 0.8),
    (0.12, [["espresso machine", "milk frother"], ["espresso cups"]], 0.75),
    (0.15, [["pour-over dripper", "paper filters"], ["paper filters"],
            ["gooseneck kettle"]], 0.7),
    (0.10, [["grinder"], ["coffee beans"], ["coffee beans"]], 0.85),
    (0.14, [["teapot"], ["loose leaf tea"], ["tea infuser", "honey"]], 0.7),
    (0.10, [["chef knife"], ["knife sharpener"], ["cutting board"]], 0.7),
    (0.08, [["cast iron pan"], ["pan scraper"]], 0.8),
]


def random_basket(rng, names, weights):
    size = rng.choice([1, 1, 1, 2, 2, 3])
    return set(rng.choices(names, weights=weights, k=size))


def customer_orders(rng, names, weights):
    """The orders of one customer: a list of (day, set of products)."""
    steps = []
    for share, journey, follow in JOURNEYS:
        if rng.random() < share:
            chosen = [journey[0]] + [s for s in journey[1:]
                                     if rng.random() < follow]
            steps.append(chosen)
    extra = rng.randint(1, 6)
    order_count = max([len(s) for s in steps] + [0]) + extra
    days = sorted(rng.sample(range(YEAR_DAYS), order_count))
    orders = [set() for _ in days]
    for chosen in steps:
        # A journey starts early enough to fit and keeps its order.
        first = rng.randint(0, order_count - len(chosen))
        slots = sorted(rng.sample(range(first, order_count), len(chosen)))
        for slot, items in zip(slots, chosen):
            orders[slot].update(items)
    for basket in orders:
        if not basket or rng.random() < 0.5:
            basket.update(random_basket(rng, names, weights))
    return list(zip(days, orders))


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    output = sys.argv[1] if len(sys.argv) > 1 else os.path.join(
        here, "orders.csv")
    rng = random.Random(SEED)
    names = list(PRODUCTS)
    weights = [PRODUCTS[n] for n in names]
    rows = []
    for number in range(1, CUSTOMERS + 1):
        customer = "C%04d" % number
        for day, basket in customer_orders(rng, names, weights):
            date = (YEAR_START + datetime.timedelta(days=day)).isoformat()
            rows.extend((date, customer, item) for item in sorted(basket))
    # A shop's log runs by date, with all customers interleaved.
    rows.sort()
    with open(output, "w", newline="") as out:
        writer = csv.writer(out, lineterminator="\n")
        writer.writerow(["customer", "time", "item"])
        for date, customer, item in rows:
            writer.writerow([customer, date, item])


if __name__ == "__main__":
    main()

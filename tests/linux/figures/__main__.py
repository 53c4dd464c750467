"""Measures the service on a board's daemons; scripts/board-figures builds what this needs and calls it."""

import importlib
import os
import sys

NAMES = ["start", "latency", "cost", "idle", "growth"]

chosen = sys.argv[1:] or NAMES
if not set(chosen) <= set(NAMES):
    sys.exit(f"usage: scripts/board-figures [{'|'.join(NAMES)}]...")
for name in chosen:
    print(f"\n{name}: load {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors", flush=True)
    importlib.import_module(f"figures.{name}").show()

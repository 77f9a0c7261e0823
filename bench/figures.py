"""Figures of what was measured, for scripts/bench --all: a line of JSON for each row and whom it is about."""
import json


def figure(row, who, unit, values):
    print(json.dumps({"row": row, "who": who, "unit": unit, "values": list(values)}), flush=True)

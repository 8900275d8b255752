#!/usr/bin/env python3
"""Prints line and branch coverage per folder from gcovr's JSON report."""
import json
import sys

FOLDERS = ["src/model", "src/engine", "src/functions", "src/dialogs", "src/toolbox",
           "src/editor", "host", "apps"]


def main(path):
    with open(path) as f:
        report = json.load(f)
    totals = {folder: [0, 0, 0, 0] for folder in FOLDERS}  # lines, covered, branches, taken
    for entry in report["files"]:
        name = entry["file"]
        folder = next((f for f in FOLDERS if name.startswith(f + "/")), None)
        if folder is None:
            continue
        t = totals[folder]
        for line in entry["lines"]:
            if line.get("gcovr/noncode"):
                continue
            t[0] += 1
            t[1] += line["count"] > 0
            for branch in line.get("branches", []):
                t[2] += 1
                t[3] += branch["count"] > 0
    print("| folder | lines | line coverage | branches | branch coverage |")
    print("|---|---|---|---|---|")
    for folder in FOLDERS:
        lines, covered, branches, taken = totals[folder]
        line_pct = 100.0 * covered / lines if lines else 0.0
        branch_pct = 100.0 * taken / branches if branches else 0.0
        print(f"| {folder} | {lines} | {line_pct:.1f} % | {branches} | {branch_pct:.1f} % |")


if __name__ == "__main__":
    main(sys.argv[1])

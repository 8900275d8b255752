#!/usr/bin/env python3
"""Prints line and branch coverage per folder from gcovr's JSON report, then the
tests' share of the code: C++ lines of tests/ against those of the code they
test, blank lines and // comment lines left out."""
import json
import os
import sys

CODE_FOLDERS = ["src", "host", "apps", "bench", "scripts"]
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
    tests = count_lines(["tests"])
    code = count_lines(CODE_FOLDERS)
    print(f"\nTests: {tests} lines against {code} lines of code: {100.0 * tests / code:.1f} %")


def count_lines(folders):
    root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    total = 0
    for folder in folders:
        for directory, _, files in os.walk(os.path.join(root, folder)):
            for name in files:
                if name.endswith((".cpp", ".h")):
                    with open(os.path.join(directory, name), encoding="utf-8", errors="replace") as f:
                        total += sum(1 for line in f if line.strip() and not line.lstrip().startswith("//"))
    return total


if __name__ == "__main__":
    main(sys.argv[1])

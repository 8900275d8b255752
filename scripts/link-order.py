#!/usr/bin/env python3
"""Orders a program's shared libraries so that the dynamic loader finds symbols fast.

The loader resolves every symbol by walking the process's libraries in load order
until one defines it. A program linking GDAL loads some 120 libraries, and most of
its ~60,000 lookups are large C++ libraries (xerces, GDAL, GEOS, PROJ...) binding to
their own symbols, found only at the end of a long walk: most of the start-up of a
short run is that walk. Naming the libraries that answer the most lookups first
makes each walk short.

Reordering must not change which library wins a symbol that two libraries define
(BLAS and LAPACK both define xerbla_, say): a library that shares a strongly defined
symbol with another that loads before it by default is kept behind that one. The
result is checked: a probe linked in the new order must bind every strongly defined
symbol where the default order binds it, or no order is written.

usage: link-order.py OUTPUT CXX LIBRARY...
Writes to OUTPUT the libraries to name first on the link line, one path a line, in
order (an empty file when the order cannot be worked out or checked).
"""
import collections
import glob
import os
import re
import subprocess
import sys
import tempfile

# Libraries answering fewer lookups than this share keep their default place.
MIN_SHARE = 0.005
STRONG = set("TDBRG")


def link_probe(cxx, workdir, name, first, libraries):
    source = os.path.join(workdir, "probe.cpp")
    with open(source, "w") as f:
        f.write("int main() { return 0; }\n")
    exe = os.path.join(workdir, name)
    cmd = [cxx, source, "-o", exe, "-Wl,--no-as-needed"] + first + libraries
    subprocess.run(cmd, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    return exe


def loader_trace(exe, workdir, what):
    """The loader's own account (LD_DEBUG) of running exe: a list of lines."""
    prefix = os.path.join(workdir, "trace-" + os.path.basename(exe) + "-" + what.replace(",", "-"))
    env = dict(os.environ, LD_DEBUG=what, LD_DEBUG_OUTPUT=prefix)
    subprocess.run([exe], env=env, check=True)
    lines = []
    for path in glob.glob(prefix + ".*"):
        with open(path, errors="replace") as f:
            lines += f.read().splitlines()
    return lines


BINDING = re.compile(r"binding file (\S+) \[\d+\] to (\S+) \[\d+\]: \S+ symbol `([^']+)'")


def bindings(lines):
    """(referencing file, symbol) -> providing file."""
    result = {}
    for line in lines:
        m = BINDING.search(line)
        if m:
            result[(m.group(1), m.group(3))] = m.group(2)
    return result


def default_scope(lines, exe):
    for line in lines:
        m = re.search(r"scope 0: (.*)$", line)
        if m:
            return [p for p in m.group(1).split() if p != exe and "linux-vdso" not in p]
    return []


def strong_symbols(path):
    out = subprocess.run(["nm", "-D", "--defined-only", path], capture_output=True, text=True).stdout
    names = set()
    for line in out.splitlines():
        parts = line.split()
        if len(parts) >= 3 and parts[1] in STRONG:
            names.add(parts[2])
    return names


def order(scope, counts):
    """The libraries to name first: the busiest providers, each behind the
    libraries that share a strong symbol with it and load before it by default."""
    position = {lib: i for i, lib in enumerate(scope)}
    owners = collections.defaultdict(list)
    for lib in scope:
        for name in strong_symbols(lib):
            owners[name].append(lib)
    partners = collections.defaultdict(set)
    for libs in owners.values():
        if len(libs) > 1:
            for a in libs:
                partners[a].update(b for b in libs if b != a)

    total = sum(counts.values())
    busy = [lib for lib, n in counts.most_common() if lib in position and n >= MIN_SHARE * total]
    placed, result = set(), []

    def place(lib):
        if lib in placed:
            return
        placed.add(lib)
        for other in sorted(partners[lib], key=position.get):
            if position[other] < position[lib]:
                place(other)
        result.append(lib)

    for lib in busy:
        place(lib)
    return result


def strong_binding_changes(before, after):
    """The bindings of a strongly defined symbol that the new order moves."""
    changed = []
    strong_cache = {}
    for key, provider in before.items():
        moved = after.get(key)
        if moved is None or moved == provider:
            continue
        for lib in (provider, moved):
            if lib not in strong_cache:
                strong_cache[lib] = strong_symbols(lib) if os.path.exists(lib) else set()
        if key[1] in strong_cache[provider] or key[1] in strong_cache[moved]:
            changed.append((key, provider, moved))
    return changed


def main():
    if len(sys.argv) < 4:
        sys.stderr.write(__doc__)
        return 2
    output, cxx, libraries = sys.argv[1], sys.argv[2], sys.argv[3:]
    first = []
    with tempfile.TemporaryDirectory() as workdir:
        try:
            exe = link_probe(cxx, workdir, "probe", [], libraries)
            lines = loader_trace(exe, workdir, "scopes,bindings")
            scope = default_scope(lines, exe)
            before = bindings(lines)
            counts = collections.Counter(p for p in before.values() if p != exe)
            first = order(scope, counts)
            checked = link_probe(cxx, workdir, "checked", first, libraries)
            after = bindings(loader_trace(checked, workdir, "bindings"))
            changes = strong_binding_changes(
                before, {(f.replace(checked, exe), s): p.replace(checked, exe) for (f, s), p in after.items()})
            if changes:
                (f, s), a, b = changes[0]
                print("link-order: reordering would bind %s of %s to %s instead of %s; default order kept"
                      % (s, f, b, a))
                first = []
        except (subprocess.CalledProcessError, OSError) as e:
            print("link-order: %s; default order kept" % e)
            first = []
    with open(output, "w") as f:
        f.write("".join(lib + "\n" for lib in first))
    return 0


if __name__ == "__main__":
    sys.exit(main())

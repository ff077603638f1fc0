#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs the value benchmarks and the same work in numpy, in turns, and prints the pairs.

    bench/numpy_peer.py BUILD/bin/sluice_bench [ROUNDS]

Numpy runs on one thread (these calls never use more) and writes into arrays that exist already,
as the nodes do. Each figure is the smallest of all rounds; ours is processor time of one thread.
"""
import json
import os
import subprocess
import sys
import time

os.environ.setdefault("OMP_NUM_THREADS", "1")
import numpy as np  # noqa: E402

MILLION = 1_000_000


def best(work, repeats=5, inner=1):
    """Seconds of the fastest call."""
    fastest = float("inf")
    for _ in range(repeats):
        start = time.perf_counter()
        for _ in range(inner):
            work()
        fastest = min(fastest, (time.perf_counter() - start) / inner)
    return fastest


def reals(count, low=0.01, high=100.0, seed=1):
    return np.random.default_rng(seed).uniform(low, high, count).astype(np.float32)


def works():
    """Name of our benchmark -> the same work in numpy."""
    pairs = {}
    for count in (1000, MILLION, 10 * MILLION):
        a, b, out = reals(count), reals(count, seed=2), np.empty(count, np.float32)
        pairs[f"addNode/{count}"] = lambda a=a, b=b, out=out: np.add(a, b, out=out)
        pairs[f"mulNode/{count}"] = lambda a=a, b=b, out=out: np.multiply(a, b, out=out)
    a, out = reals(MILLION), np.empty(MILLION, np.float32)
    exponents = reals(MILLION, -2, 2, seed=3)
    angles = reals(MILLION, -100, 100, seed=4)
    powers = reals(MILLION, -80, 80, seed=5)
    pairs["sinNode/1"] = lambda: np.sin(angles, out=out)
    pairs["sqrtNode/1"] = lambda: np.sqrt(a, out=out)
    pairs["expNode/1"] = lambda: np.exp(powers, out=out)
    pairs["logNode/1"] = lambda: np.log(a, out=out)
    pairs["powNode/1"] = lambda: np.power(a, exponents, out=out)
    vectors = reals(3 * MILLION).reshape(-1, 3)
    scaled = np.empty_like(vectors)
    pairs["scaleVectors"] = lambda: np.multiply(vectors, a[:, None], out=scaled)
    pairs["sortReals"] = lambda: np.argsort(a, kind="stable")
    words = np.array([f"name{n}" for n in np.random.default_rng(6).integers(0, MILLION, MILLION)])
    pairs["sortStrings"] = lambda: np.argsort(words, kind="stable")
    few = np.random.default_rng(7).integers(0, 100_000, MILLION).astype(np.int32)
    pairs["removeRepeatedIntegers"] = lambda: np.unique(few, return_index=True, return_inverse=True)
    pairs["removeRepeatedReals"] = lambda: np.unique(a, return_index=True, return_inverse=True)
    pairs["removeRepeatedStrings"] = lambda: np.unique(
        words, return_index=True, return_inverse=True)
    addresses = np.random.default_rng(8).integers(0, 100_000, MILLION).astype(np.int64) * 64
    pairs["removeRepeatedPointers"] = lambda: np.unique(
        addresses, return_index=True, return_inverse=True)
    wanted = np.arange(1000, dtype=np.int32)
    pairs["findAllIntegers"] = lambda: np.flatnonzero(np.isin(few, wanted))
    mask = np.random.default_rng(9).integers(0, 2, MILLION).astype(bool)
    pairs["filterByMask"] = lambda: a[mask]
    index = np.random.default_rng(10).integers(0, MILLION, MILLION).astype(np.int32)
    pairs["getByIndex"] = lambda: np.take(a, index, out=out, mode="clip")
    both = np.empty(2 * MILLION, np.float32)
    pairs["concat"] = lambda: np.concatenate((a, a), out=both)
    pairs["slice"] = lambda: np.copyto(out[: MILLION // 2], a[MILLION // 4: 3 * MILLION // 4])
    pairs["reverse"] = lambda: np.copyto(out, a[::-1])
    return pairs


def ours(program):
    """Seconds per call by name."""
    run = subprocess.run(
        [program, "--benchmark_filter=^values/", "--benchmark_format=json",
         "--benchmark_min_time=0.1"],
        check=True, capture_output=True, text=True)
    units = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3}
    return {entry["name"].removeprefix("values/"): entry["cpu_time"] * units[entry["time_unit"]]
            for entry in json.loads(run.stdout)["benchmarks"]}


def main():
    program = sys.argv[1]
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    peers = works()
    mine, theirs = {}, {}
    for _ in range(rounds):
        for name, seconds in ours(program).items():
            mine[name] = min(mine.get(name, seconds), seconds)
        for name, work in peers.items():
            inner = 2000 if name.endswith("/1000") else 1
            seconds = best(work, 3, inner)
            theirs[name] = min(theirs.get(name, seconds), seconds)
    print(f"{'work':28} {'ours us':>12} {'numpy us':>12} {'numpy/ours':>11}")
    for name, seconds in mine.items():
        peer = theirs.get(name)
        tail = f" {peer * 1e6:12.2f} {peer / seconds:11.2f}" if peer else ""
        print(f"{name:28} {seconds * 1e6:12.2f}{tail}")


if __name__ == "__main__":
    main()

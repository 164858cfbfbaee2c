"""Python package timings: four threads against one on synthetic breast
cases, and a dataset manifest (the real cases) on 1 and 2 Dask workers.
Run with PYTHONPATH=<build>/python; prints one line a figure."""
import os
import pathlib
import statistics
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np

HERE = pathlib.Path(__file__).resolve()
sys.path.insert(0, str(HERE.parents[1] / "python" / "tests"))

import sonolex  # noqa: E402
from conftest import random_case  # noqa: E402
from realdata import write_manifest  # noqa: E402
from sonolex.dataset import describe_manifest  # noqa: E402


def threads(cases, workers):
    start = time.perf_counter()
    with ThreadPoolExecutor(workers) as pool:
        list(pool.map(lambda c: sonolex.describe_breast(c[0], c[1], roi=c[2]), cases))
    return time.perf_counter() - start


def main():
    rng = np.random.default_rng(1)
    cases = [random_case(rng) for _ in range(400)]
    one = statistics.median(threads(cases, 1) for _ in range(3))
    four = statistics.median(threads(cases, 4) for _ in range(3))
    print(f"threads: 400 breast cases, 1 thread {one:.2f} s, 4 threads {four:.2f} s, speed-up {one / four:.2f}")
    real = os.environ.get("SONOLEX_REAL_DATA", str(HERE.parents[2] / "shared" / "data" / "real"))
    if not os.path.isfile(os.path.join(real, "manifest.json")):
        print("dataset: no real data at", real)
        return
    with tempfile.TemporaryDirectory() as tmp:
        csv = write_manifest(real, tmp)
        for workers in (1, 2):
            start = time.perf_counter()
            table = describe_manifest(csv, n_workers=workers, progress=False)
            took = time.perf_counter() - start
            print(f"dataset: {len(table)} real cases, {workers} worker(s): {took:.1f} s "
                  f"({(table['error'] == '').sum()} described), cluster start and stop included")


if __name__ == "__main__":
    main()

"""How far threads help: frames per second of 8 threads, with an object each and with one for all, against one thread.

usage: PYTHONPATH=build/release/python python3 bindings/python/benchmarks/threads.py [CORES...]

OpenCV's own threads are switched off, so that what is gained is gained by Python's.
"""

import concurrent.futures
import os
import sys
import time

import numpy as np
import quarry

THREADS = 8
FRAMES = 40  # of each thread

frame = np.random.default_rng(1).integers(0, 256, (480, 640, 3), dtype=np.uint8)


def background():
    model = quarry.BackgroundModel()
    clock = iter(range(1, 10**15, 400_000))
    return lambda: model.update(frame, next(clock))


def sharpness():
    measure = quarry.VarianceOfLaplacian()
    return lambda: measure(frame)


def flow():
    calculator = quarry.DenseOpticalFlow()
    return lambda: calculator.update(frame)


def frames_per_second(calls):
    """Of as many threads as there are calls."""

    def work(call):
        for _ in range(FRAMES):
            call()

    with concurrent.futures.ThreadPoolExecutor(len(calls)) as pool:
        for call in calls:
            call()
        start = time.perf_counter()
        list(pool.map(work, calls))
        return len(calls) * FRAMES / (time.perf_counter() - start)


def best(calls):
    return max(frames_per_second(calls) for _ in range(3))


def main(*cores):
    quarry.set_opencv_threads(1)
    available = sorted(os.sched_getaffinity(0))
    print(f"{'operation':12} {'cores':>5} {'one thread':>12} {'8, an object each':>19} {'8, one object':>15}")
    for count in map(int, cores or ("1", "2")):
        os.sched_setaffinity(0, available[:count])
        for create in (sharpness, background, flow):
            one = best([create()])
            each = best([create() for _ in range(THREADS)])
            # A background model takes the frames of one stream, in the order of their times.
            shared = "" if create is background else f"{best([create()] * THREADS) / one:.2f} x"
            print(
                f"{create.__name__:12} {len(available[:count]):5} {one:10.1f}/s {each:11.1f}/s {each / one:4.2f} x"
                f" {shared:>15}"
            )


main(*sys.argv[1:])

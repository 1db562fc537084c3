"""Beside cv2 in one process, and in processes that were forked or spawned."""

import multiprocessing
import os
import signal
import subprocess
import sys
import threading

import cv2
import numpy as np
import pytest
import quarry
from conftest import random_frame

FRAME = random_frame(320, 240, 1)


def in_child(work):
    """Forks, works in the child for a minute at most, and gives its exit code: 0 when it was true."""
    child = os.fork()
    if child == 0:
        signal.alarm(60)
        code = 2
        try:
            code = 0 if work() else 1
        finally:
            os._exit(code)
    return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])


def test_objects_of_the_parent_work_in_a_forked_child():
    frames = [random_frame(320, 240, seed) for seed in range(3)]
    flow, model, subtract = quarry.DenseOpticalFlow(), quarry.BackgroundModel(), quarry.ImageSubtractor()
    flow.update(frames[0])
    model.update(frames[0], 1)
    difference = subtract(frames[0], frames[1])
    expected_difference = cv2.absdiff(frames[0], frames[1])

    def go_on():
        flow.update(frames[1])
        model.update(frames[1], 10_000_000)
        return flow.result().tobytes() + model.result().background.tobytes()

    other_flow, other_model = quarry.DenseOpticalFlow(), quarry.BackgroundModel()
    other_flow.update(frames[0])
    other_model.update(frames[0], 1)
    other_flow.update(frames[1])
    other_model.update(frames[1], 10_000_000)
    expected = other_flow.result().tobytes() + other_model.result().background.tobytes()

    def in_both():
        nonlocal difference
        same = go_on() == expected and np.array_equal(difference, expected_difference)
        difference = None  # its end is the child's own
        return same and np.array_equal(subtract(frames[0], frames[1]), expected_difference)

    assert in_child(in_both) == 0
    assert in_both()


def test_a_child_refuses_what_a_thread_of_the_parent_was_using():
    busy, results = quarry.FastNlMeansDenoising(), []
    results.append(busy(FRAME[:16]))
    stop = threading.Event()
    begun = threading.Event()

    def work():
        while not stop.is_set():
            begun.set()
            busy(FRAME)

    thread = threading.Thread(target=work)
    thread.start()
    begun.wait()

    def refused():
        results.clear()  # waits for nobody
        try:
            busy(FRAME)
        except RuntimeError as error:
            return "forked" in str(error) and quarry.FastNlMeansDenoising()(FRAME[:16]).any()
        return False

    codes = [in_child(refused) for _ in range(5)]
    stop.set()
    thread.join()
    assert 0 in codes  # now and then the thread is between two calls
    assert set(codes) <= {0, 1}
    assert busy(FRAME[:16]).any()


def sharpness_of(seed):
    return quarry.VarianceOfLaplacian()(random_frame(64, 48, seed))


@pytest.mark.parametrize("method", ["fork", "spawn", "forkserver"])
def test_pools(method):
    with multiprocessing.get_context(method).Pool(2) as pool:
        assert pool.map(sharpness_of, range(6)) == [sharpness_of(seed) for seed in range(6)]


@pytest.mark.parametrize("imports", ["import cv2, quarry", "import quarry, cv2"])
def test_beside_cv2_in_either_order(imports):
    program = f"""
{imports}
import numpy as np
frame = np.arange(48 * 64 * 3, dtype=np.uint32).astype(np.uint8).reshape(48, 64, 3)
assert (quarry.ImageSubtractor()(frame, 255 - frame) == cv2.absdiff(frame, 255 - frame)).all()
for raises, error in ((lambda: cv2.cvtColor(np.zeros((0, 0, 3), np.uint8), 6), cv2.error),
                      (lambda: quarry.ColorComparison()(frame, frame, area=(1, 1, 1, 1)), quarry.OpenCVError)):
    try:
        raises()
    except error:
        pass
    else:
        raise SystemExit("nothing was raised")
with open("/proc/self/maps") as maps:
    loaded = {{line.split()[-1] for line in maps if "libopencv_core" in line}}
assert len(loaded) == 1, loaded
"""
    subprocess.run([sys.executable, "-c", program], check=True)


def test_the_package_does_without_cv2():
    program = "import sys, quarry; sys.exit('cv2' in sys.modules)"
    subprocess.run([sys.executable, "-c", program], check=True)


def test_set_opencv_threads_is_what_cv2_sees():
    before = cv2.getNumThreads()
    quarry.set_opencv_threads(1)
    assert cv2.getNumThreads() == 1
    quarry.set_opencv_threads(-1)
    assert cv2.getNumThreads() == before


def test_results_that_live_until_the_end_of_the_interpreter():
    program = """
import threading
import numpy as np
import quarry
frame = np.zeros((480, 640, 3), np.uint8)
subtract = quarry.ImageSubtractor()
kept = subtract(frame, frame)
denoise = quarry.FastNlMeansDenoising()
part = denoise(frame[:10])
threading.Thread(target=denoise, args=(frame,), daemon=True).start()
"""
    subprocess.run([sys.executable, "-c", program], check=True)


@pytest.mark.parametrize("before", ["", "import quarry"])
def test_sub_interpreters_are_refused(before):
    program = f"""
try:
    import _interpreters as interpreters
    create = lambda: interpreters.create("legacy")  # the others refuse all modules that do not ask for them
except ImportError:  # before Python 3.13
    import _xxsubinterpreters as interpreters
    create = interpreters.create
{before}
error = interpreters.run_string(create(), '''
try:
    import quarry
except ImportError as error:
    print(error)
''')
assert error is None, error
"""
    run = subprocess.run([sys.executable, "-W", "ignore", "-c", program], capture_output=True, text=True, timeout=60)
    assert run.stdout == "quarry: cannot be used in a sub-interpreter\n", run.stderr


def test_the_module_is_the_same_when_it_is_imported_again():
    program = """
import importlib, sys
import quarry
first = sys.modules.pop("quarry._quarry")
assert importlib.import_module("quarry._quarry") is first
assert importlib.reload(first).ContourRate is quarry.ContourRate
"""
    subprocess.run([sys.executable, "-c", program], check=True)

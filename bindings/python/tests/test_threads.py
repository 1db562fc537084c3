"""Threads: side by side with an object each, one after the other with one object, never in each other's way."""

import sys
import threading
import time

import numpy as np
import pytest
import quarry
from conftest import random_frame


def run(tasks):
    """Runs tasks in threads and gives their results in order; what one raises, it raises."""
    results = [None] * len(tasks)

    def work(index):
        try:
            results[index] = tasks[index]()
        except BaseException as error:
            results[index] = error

    threads = [threading.Thread(target=work, args=(index,)) for index in range(len(tasks))]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for result in results:
        if isinstance(result, BaseException):
            raise result
    return results


@pytest.fixture
def one_thread_until_it_lets_go():
    """The interpreter takes its lock from no thread: others run only when a thread gives it up itself."""
    before = sys.getswitchinterval()
    sys.setswitchinterval(1000)
    yield
    sys.setswitchinterval(before)


def test_others_run_while_a_call_runs(one_thread_until_it_lets_go):
    frame, denoise = random_frame(320, 240, 1), quarry.FastNlMeansDenoising()
    order = []
    begun = threading.Event()

    def slow():
        begun.set()
        denoise(frame)
        order.append("slow")

    thread = threading.Thread(target=slow)
    thread.start()
    begun.wait()
    order.append("main")
    thread.join()
    assert order == ["main", "slow"]


def steps_until(events, tasks):
    """How many milliseconds or more this thread has slept through when the first of the tasks is done.

    Each task is begun when the one before it has called `events.release`.
    """
    steps, done = 0, []

    def run_one(task):
        task()
        done.append(steps)

    threads = [threading.Thread(target=run_one, args=(task,)) for task in tasks]
    for thread in threads:
        thread.start()
        events.acquire()
    while not done:
        time.sleep(0.001)
        steps += 1
    for thread in threads:
        thread.join()
    return done[0]


def test_others_run_while_a_call_waits_for_its_turn(one_thread_until_it_lets_go):
    frame, denoise = random_frame(320, 240, 1), quarry.FastNlMeansDenoising()
    begun, results = threading.Semaphore(0), []

    def slow():
        begun.release()
        results.append(denoise(frame))  # its end, too, would wait for its turn

    assert steps_until(begun, [slow, slow]) > 5


def test_others_run_while_the_end_of_a_result_waits_for_its_turn(one_thread_until_it_lets_go):
    frame, denoise = random_frame(320, 240, 1), quarry.FastNlMeansDenoising()
    results = [denoise(frame)]
    begun = threading.Semaphore(0)

    def slow():
        begun.release()
        denoise(frame)

    def end():
        begun.release()
        results.clear()

    assert steps_until(begun, [slow, end]) > 5


def test_threads_that_share_an_updater_take_turns():
    frames = [random_frame(64, 48, seed) for seed in range(4)]
    flow = quarry.DenseOpticalFlow()
    flow.update(frames[0])

    def work():
        for round_ in range(25):
            for frame in frames:
                assert flow.update(frame) is quarry.State.READY
                assert flow.result().shape == (48, 64, 2)

    run([work] * 4)


def test_threads_that_share_a_processor_take_turns_with_the_ends_of_its_results():
    rng = np.random.default_rng(2)
    frames = [(rng.random((90, 120, 1)) < 0.3).astype(np.uint8).repeat(3, axis=2) * 255 for _ in range(4)]
    shared = quarry.ContourClusters()

    def work(frame):
        def task():
            kept = []
            for _ in range(40):
                clusters = shared(frame)
                kept = kept[-3:] + [clusters[-1].points]
            return [(cluster.points.tobytes(), cluster.area) for cluster in clusters]

        return task

    expected = [[(c.points.tobytes(), c.area) for c in quarry.ContourClusters()(frame)] for frame in frames]
    assert run([work(frame) for frame in frames]) == expected


def test_a_result_may_end_in_another_thread_after_its_operation():
    results = [quarry.ImageSubtractor()(random_frame(64, 48, 1), random_frame(64, 48, seed)) for seed in range(50)]
    run([results.clear] + [lambda: quarry.ImageSubtractor()(random_frame(64, 48, 1), random_frame(64, 48, 2))] * 3)


def test_threads_with_an_object_each_get_what_one_thread_gets():
    streams = [[random_frame(80, 60, 10 * stream + number) for number in range(5)] for stream in range(8)]

    def task(stream):
        def work():
            model, sharpness = quarry.BackgroundModel(), quarry.VarianceOfLaplacian()
            seen = []
            for number, frame in enumerate(stream):
                model.update(frame, 1 + number * 1_000_000)
                seen.append((model.result().background.tobytes(), sharpness(frame)))
            return seen

        return work

    tasks = [task(stream) for stream in streams]
    assert run(tasks) == [work() for work in tasks]

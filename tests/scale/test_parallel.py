"""The recipe for GNU parallel."""

import pytest

from conftest import need, recipe, wait_until

SHARDS = 4


@pytest.fixture(autouse=True)
def parallel(archive):
    need("parallel")
    archive.environment.update(PARALLEL="-j2", PARALLEL_HOME=str(archive.folder))


def command():
    return ["sh", "-c", recipe("GNU parallel").replace("100", str(SHARDS))]


def joblog(archive):
    """Exit codes by shard."""
    lines = (archive.folder / "scan.log").read_text().splitlines()[1:]
    return {int(line.split()[0]): int(line.split("\t")[6]) for line in lines}


def test_killed_half_way_and_started_again(archive, reference):
    run = archive.start(command())
    archive.wait_until_half_way()
    archive.kill_all()
    run.wait()
    assert archive.run(*command()).returncode == 0
    assert archive.merged() == reference


def test_one_of_two_commands_is_killed(archive, reference):
    run = archive.start(command())
    archive.wait_until_half_way()
    killed = archive.processes("quarry")[0]
    archive.kill([killed])
    wait_until(lambda: run.poll() is not None, "the run ends")
    assert run.returncode == 0
    assert joblog(archive) == dict.fromkeys(range(1, SHARDS + 1), 0)
    assert archive.merged() == reference


def test_what_may_be_better_the_next_time_is_run_again_and_a_bad_video_is_not(archive):
    archive.stand_in("""
        echo "$*" >>calls
        case "$*" in
            *--shard\\ 1/*) exit 65 ;;
            *--shard\\ 2/*) [ "$(grep -c 'shard 2/' calls)" -gt 1 ] || exit 75 ;;
        esac
    """)
    assert archive.run(*command()).returncode == 0
    calls = (archive.folder / "calls").read_text()
    assert [calls.count(f"--shard {shard}/") for shard in range(1, SHARDS + 1)] == [1, 2, 1, 1]


def test_what_fails_each_time_is_told_and_done_by_the_next_run(archive):
    archive.stand_in("""
        echo "$*" >>calls
        case "$*" in *--shard\\ 3/*) [ -e repaired ] || exit 75 ;; esac
    """)
    assert archive.run(*command()).returncode == 1
    assert joblog(archive)[3] == 75
    (archive.folder / "repaired").touch()
    assert archive.run(*command()).returncode == 0
    calls = (archive.folder / "calls").read_text()
    assert [calls.count(f"--shard {shard}/") for shard in range(1, SHARDS + 1)] == [1, 1, 4, 1]

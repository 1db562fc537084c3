"""The recipe for Dask, and the module that it uses."""

import pathlib
import sys

import pytest

from conftest import DOCUMENT, need, recipe, wait_until

distributed = pytest.importorskip("distributed", reason="python3-distributed is not installed (./dev test installs it)")
MODULE = DOCUMENT.parents[1] / "bindings/python/quarry/dask.py"
LOOPBACK = "127.0.0.1"


@pytest.fixture(scope="session")
def package(tmp_path_factory):
    """Where the module is the whole package: it must do without the rest."""
    folder = tmp_path_factory.mktemp("python")
    (folder / "quarry").mkdir()
    (folder / "quarry/dask.py").symlink_to(MODULE)
    return str(folder)


def start_cluster(archive, nanny):
    need("dask-scheduler", "dask-worker")
    file = archive.folder / "scheduler.json"
    file.unlink(missing_ok=True)
    common = ("--scheduler-file", str(file), "--host", LOOPBACK, "--no-dashboard")
    log = (archive.folder / "dask.log").open("a")
    archive.start(["dask-scheduler", *common, "--port", "0"], stderr=log)
    for name in "ab":
        archive.start(["dask-worker", *common, nanny, "--nthreads", "1", "--name", name,
                       "--local-directory", str(archive.folder)], stderr=log)


def start_client(archive, package):
    """The recipe, on a machine that has the package; workers do without it."""
    (archive.folder / "scan.py").write_text(recipe("Dask"))
    return archive.start(["env", f"PYTHONPATH={package}", sys.executable, "scan.py"])


def ended(run):
    wait_until(lambda: run.poll() is not None, "the client ends")
    return run.returncode


def parent(process):
    return int(pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[1])


@pytest.mark.parametrize("nanny", ["--nanny", "--no-nanny"])
def test_one_of_two_workers_is_killed(archive, reference, package, nanny):
    start_cluster(archive, nanny)
    client = start_client(archive, package)
    archive.wait_until_half_way()
    archive.kill([parent(archive.processes("quarry")[0])])
    assert ended(client) == 0
    assert archive.merged() == reference


def test_everything_is_killed_half_way_and_started_again(archive, reference, package):
    start_cluster(archive, "--no-nanny")
    client = start_client(archive, package)
    archive.wait_until_half_way()
    archive.kill_all()
    assert client.wait() != 0
    start_cluster(archive, "--no-nanny")
    assert ended(start_client(archive, package)) == 0
    assert archive.merged() == reference


def test_a_worker_that_is_lost_takes_its_command_with_it(archive, package):
    archive.stand_in("exec sleep 1000")
    worker = archive.start(["env", f"PYTHONPATH={package}", sys.executable, "-c",
                            "import quarry.dask; quarry.dask._scan_one('a.avi', ['quarry'], '.')"])
    wait_until(lambda: archive.processes("sleep"), "the command runs")
    archive.kill([worker.pid])
    wait_until(lambda: not archive.processes("sleep"), "the command has ended")


@pytest.fixture
def scan(archive, package, monkeypatch):
    """`scan` on a worker within this process, with a command that logs its calls and ends as the video's name says."""
    archive.stand_in("""
        read -r name
        echo "$name $*" >>calls
        case $name in
            once-*) [ "$(grep -c "^$name" calls)" -gt 1 ] || exit 75 ;;
            killed-*) [ "$(grep -c "^$name" calls)" -gt 1 ] || kill -KILL $$ ;;
            code-*) echo "it is $name" >&2; exit "${name#code-}" ;;
        esac
    """)
    monkeypatch.syspath_prepend(package)
    monkeypatch.chdir(archive.folder)
    import quarry.dask

    with distributed.Client(processes=False, n_workers=1, threads_per_worker=1, dashboard_address=None,
                            local_directory=str(archive.folder)) as client:
        yield lambda videos, **options: quarry.dask.scan(
            client, videos, "flow", out="results", command=str(archive.folder / "bin/quarry"), **options)


def calls(archive):
    return (archive.folder / "calls").read_text().splitlines()


def test_a_bad_video_is_a_result_and_others_are_run_again(archive, scan):
    videos = ["fine", "once-75", "code-65", "killed-9"]
    assert scan([pathlib.Path(video) for video in videos]) == [
        ("fine", 0, "fine"), ("once-75", 0, "fine"), ("code-65", 65, "bad"), ("killed-9", 0, "fine")]
    names = [line.split()[0] for line in calls(archive)]
    assert [names.count(video) for video in videos] == [1, 2, 1, 2]


def test_what_fails_each_time_is_raised_when_the_others_are_done(archive, scan):
    with pytest.raises(RuntimeError, match="exit code 75: it is code-75"):
        scan(["code-75", "fine", "also-fine"], retries=2)
    names = [line.split()[0] for line in calls(archive)]
    assert sorted(names) == ["also-fine", "code-75", "code-75", "code-75", "fine"]


@pytest.mark.parametrize("video", ["code-70", "code-2"])
def test_bugs_and_wrong_usage_are_raised_and_not_run_again(archive, scan, video):
    with pytest.raises(RuntimeError, match=f"it is {video}"):
        scan([video])
    assert len(calls(archive)) == 1


def test_options_are_those_of_the_verb(archive, scan):
    scan(["fine"], detail=0.3, line=(0.1, 0.5, 0.9, 0.5), every=2, keep_all=True, quiet=False, scale=None)
    assert calls(archive) == ["fine scan flow --detail=0.3 --line=0.1,0.5,0.9,0.5 --every=2 --keep-all "
                              "--manifest - --out results"]


@pytest.mark.parametrize("name", ["", "#1.avi", "two\nlines.avi"])
def test_names_that_a_manifest_cannot_hold_are_refused(archive, scan, name):
    with pytest.raises(ValueError, match="cannot name this video"):
        scan([name])
    assert not (archive.folder / "calls").exists()

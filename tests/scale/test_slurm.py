"""The recipe for Slurm, on a cluster of one node with two slots that the tests start and end by themselves."""

import getpass
import socket
import tempfile

import pytest

from conftest import VIDEOS, need, recipe, wait_until

SHARDS = 4
CONFIGURATION = """
ClusterName=quarry
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={controller_port}
SlurmdPort={node_port}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/none
CredType=cred/none
AuthInfo=cred_expire=5
AccountingStorageType=accounting_storage/none
JobAcctGatherType=jobacct_gather/none
MpiDefault=none
ProctrackType=proctrack/pgid
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerType=sched/builtin
SchedulerParameters=batch_sched_delay=0,sched_interval=1
StateSaveLocation={state}
SlurmdSpoolDir={state}/spool
SlurmctldPidFile={state}/slurmctld.pid
SlurmdPidFile={state}/slurmd.pid
KillWait=1
ReturnToService=2
NodeName={host} NodeAddr=127.0.0.1 CPUs=2
PartitionName=main Nodes={host} Default=YES
"""


def free_ports():
    with socket.socket() as one, socket.socket() as other:
        one.bind(("127.0.0.1", 0))
        other.bind(("127.0.0.1", 0))
        return one.getsockname()[1], other.getsockname()[1]


class Cluster:
    def __init__(self, archive, state):
        self.archive = archive
        controller_port, node_port = free_ports()
        self.configuration = archive.folder / "slurm.conf"
        self.configuration.write_text(CONFIGURATION.format(
            host=socket.gethostname().partition(".")[0], user=getpass.getuser(), state=state,
            controller_port=controller_port, node_port=node_port))
        archive.environment["SLURM_CONF"] = str(self.configuration)
        self.log = (archive.folder / "slurm.log").open("a")
        self.controller = self.start("slurmctld")
        self.start_node()

    def start(self, daemon):
        return self.archive.start([daemon, "-D", "-f", str(self.configuration)], stdout=self.log, stderr=self.log)

    def start_node(self):
        self.node = self.start("slurmd")
        wait_until(lambda: self.ask("sinfo", "-h", "-o", "%t").strip() in ("idle", "mix", "alloc") or self.gone(),
                   "the node is up")
        if self.gone():
            pytest.skip("Slurm's daemons cannot run here: " + (self.archive.folder / "slurm.log").read_text()[-500:])

    def lose_node(self):
        """All of it at once; the controller, which would find out after SlurmdTimeout, is told."""
        self.archive.kill(self.archive.processes("slurmd") + self.archive.processes("slurmstepd"))  # they tell nobody
        controller = [self.controller.pid, *self.archive.processes("slurmscriptd")]
        self.archive.kill(process for process in self.archive.processes() if process not in controller)
        self.node.wait()
        self.archive.run("scontrol", "update", "NodeName=ALL", "State=DOWN", "Reason=lost")

    def gone(self):
        return self.controller.poll() is not None or self.node.poll() is not None

    def ask(self, *command):
        return self.archive.run(*command).stdout

    def submit(self):
        script = self.archive.folder / "scan.sh"
        script.write_text(recipe("Slurm").replace("1-100", f"1-{SHARDS}"))
        run = self.archive.run("sbatch", "--parsable", str(script))
        assert run.returncode == 0, run.stderr
        return run.stdout.strip()

    def wait_until_done(self):
        wait_until(lambda: not self.ask("squeue", "-h"), "all jobs are done")

    def exit_codes(self, job):
        return [next(word for word in self.ask("scontrol", "show", "job", f"{job}_{shard}").split()
                     if word.startswith("ExitCode=")) for shard in range(1, SHARDS + 1)]


@pytest.fixture
def cluster(archive):
    need("slurmctld", "slurmd", "sbatch")
    # In a folder of a short name: the node's sockets stand there, whose paths have 107 characters at most.
    with tempfile.TemporaryDirectory(prefix="slurm") as state:
        try:
            yield Cluster(archive, state)
        finally:
            archive.kill_all()
            print((archive.folder / "slurm.log").read_text())  # shown with a test that failed


def test_one_of_two_commands_is_killed(archive, cluster, reference):
    job = cluster.submit()
    archive.wait_until_half_way()
    archive.kill(archive.processes("quarry")[:1])
    cluster.wait_until_done()
    assert cluster.exit_codes(job) == ["ExitCode=0:0"] * SHARDS
    assert archive.merged() == reference


def test_the_node_is_lost_half_way_and_comes_back(archive, cluster, reference):
    job = cluster.submit()
    archive.wait_until_half_way()
    cluster.lose_node()
    assert len(archive.finished()) < VIDEOS
    cluster.start_node()
    cluster.wait_until_done()
    assert cluster.exit_codes(job) == ["ExitCode=0:0"] * SHARDS
    assert archive.merged() == reference


def test_what_may_be_better_the_next_time_is_run_again_and_a_bad_video_is_not(archive, cluster):
    archive.stand_in("""
        echo "$*" >>calls
        case "$*" in
            *--shard\\ 1/*) exit 65 ;;
            *--shard\\ 2/*) [ "$(grep -c 'shard 2/' calls)" -gt 1 ] || exit 75 ;;
        esac
    """)
    job = cluster.submit()
    cluster.wait_until_done()
    assert cluster.exit_codes(job) == ["ExitCode=65:0", *["ExitCode=0:0"] * (SHARDS - 1)]
    calls = (archive.folder / "calls").read_text()
    assert [calls.count(f"--shard {shard}/") for shard in range(1, SHARDS + 1)] == [1, 2, 1, 1]

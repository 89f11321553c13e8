# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""A Slurm of one's own: a controller and some workers on this machine, on loopback, in a folder of its own, without a
service manager. Everything that was begun ends with it, also what its tasks left."""

import ctypes
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import time

PROGRAMS = ["munged", "slurmctld", "slurmd", "sbatch", "scontrol", "squeue", "scancel", "sinfo"]
PATH = os.environ.get("PATH", "") + ":/usr/sbin:/sbin"

CONFIGURATION = """ClusterName=farm
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
CryptoType=crypto/munge
AuthInfo=socket={folder}/munge/sock
SlurmctldPort={port}
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool-%n
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd-%n.pid
SlurmctldLogFile={folder}/log/slurmctld.log
SlurmdLogFile={folder}/log/slurmd-%n.log
ProctrackType=proctrack/pgid
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SchedulerType=sched/backfill
SchedulerParameters=sched_interval=2,bf_interval=2
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
ReturnToService=2
MpiDefault=none
SwitchType=switch/none
SlurmdTimeout=20
SlurmdParameters=config_overrides
{nodes}
PartitionName=main Nodes=ALL Default=YES MaxTime=INFINITE State=UP
"""


def why_not():
    """Why no Slurm can be started here, or None."""
    if os.geteuid() != 0:
        return "Slurm's daemons are started as root here, and this is another user"
    missing = [name for name in PROGRAMS if not shutil.which(name, path=PATH)]
    if missing:
        return f"{', '.join(missing)} cannot be found; the packages are slurm-wlm and munge"
    return None


def free_ports(count):
    sockets = [socket.socket() for _ in range(count)]
    for each in sockets:
        each.bind(("127.0.0.1", 0))
    ports = [each.getsockname()[1] for each in sockets]
    for each in sockets:
        each.close()
    return ports


def process_table():
    """pid: (parent, environment, command) of every process that can be looked at."""
    table = {}
    for entry in pathlib.Path("/proc").iterdir():
        if not entry.name.isdigit():
            continue
        try:
            parent = int((entry / "stat").read_text(errors="replace").rpartition(")")[2].split()[1])
            table[int(entry.name)] = (parent, (entry / "environ").read_bytes().split(b"\0"),
                                      (entry / "cmdline").read_bytes())
        except OSError:
            pass  # it has just ended
    return table


def descendants(ancestor):
    table = process_table()
    found = []
    for pid in table:
        line = pid
        while line in table and line != ancestor:
            line = table[line][0]
        if line == ancestor and pid != ancestor:
            found.append(pid)
    return found


class SlurmFarm:
    """Use it in a `with`. `workers` are the names of the worker nodes, each with one core."""

    def __init__(self, folder, workers=("n1", "n2")):
        self.folder = pathlib.Path(folder)
        self.workers = list(workers)
        self.daemons = {}
        self.environment = dict(os.environ, PATH=PATH, SLURM_CONF=str(self.folder / "slurm.conf"))

    def __enter__(self):
        libc = ctypes.CDLL(None)
        libc.prctl(36, 1)  # what the workers leave behind becomes this process's child (PR_SET_CHILD_SUBREAPER)
        try:
            self.start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for daemon in self.daemons.values():
            daemon.kill()
            daemon.wait()
        # What is killed may have begun something a moment before, which then is a child of this process.
        while own := descendants(os.getpid()):
            for pid in own:
                self.kill(pid, signal.SIGKILL)
                try:
                    os.waitpid(pid, os.WNOHANG)
                except ChildProcessError:
                    pass
            time.sleep(0.02)

    @staticmethod
    def kill(pid, number):
        try:
            os.kill(pid, number)
        except ProcessLookupError:
            pass

    def daemon(self, name, *command):
        libc = ctypes.CDLL(None)
        with open(self.folder / "log" / f"{name}.out", "ab") as log:
            # It does not outlive this process (PR_SET_PDEATHSIG), however that ends.
            self.daemons[name] = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=log,
                                                  stderr=log, preexec_fn=lambda: libc.prctl(1, signal.SIGKILL))

    def start(self):
        for name in ["state", "log", "munge", *(f"spool-{worker}" for worker in self.workers)]:
            (self.folder / name).mkdir(parents=True)
        munge = self.folder / "munge"
        munge.chmod(0o700)
        (munge / "key").write_bytes(os.urandom(1024))
        (munge / "key").chmod(0o400)
        host = socket.gethostname().split(".")[0]
        port, *ports = free_ports(1 + len(self.workers))
        nodes = "\n".join(f"NodeName={worker} NodeHostname={host} NodeAddr=127.0.0.1 Port={worker_port} CPUs=1 "
                          f"RealMemory=1000 State=UNKNOWN" for worker, worker_port in zip(self.workers, ports))
        (self.folder / "slurm.conf").write_text(
            CONFIGURATION.format(host=host, folder=self.folder, port=port, nodes=nodes))
        self.daemon("munged", "munged", "--foreground", "--force", "--num-threads=2", f"--key-file={munge}/key",
                    f"--socket={munge}/sock", f"--pid-file={munge}/pid", f"--log-file={munge}/log",
                    f"--seed-file={munge}/seed")
        self.until(lambda: (munge / "sock").exists(), 600, "munged has no socket")
        self.daemon("slurmctld", "slurmctld", "-D")
        for worker in self.workers:
            self.daemon(worker, "slurmd", "-D", "-N", worker)
        idle = [f"{worker} idle" for worker in sorted(self.workers)]
        self.until(lambda: sorted(self.ask("sinfo", "--noheader", "--Node", "--format=%N %T").splitlines()) == idle, 1200,
                   "the workers are not ready")

    def until(self, condition, seconds, what):
        deadline = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > deadline:
                logs = "".join(f"== {log.name}\n{log.read_text(errors='replace')[-3000:]}"
                               for log in sorted((self.folder / "log").iterdir()))
                raise TimeoutError(f"{what} after {seconds} s\n{logs}")
            time.sleep(0.1)

    def ask(self, *command):
        """What a client of Slurm prints; nothing while the controller does not answer."""
        return subprocess.run(command, env=self.environment, capture_output=True, text=True).stdout

    def submit(self, script, folder, *options):
        """A job that was submitted: sbatch, which waits for its end."""
        return subprocess.Popen(["sbatch", "--wait", *options, str(script)], cwd=folder, env=self.environment,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def tasks_of(self, worker):
        """The processes of tasks that run on a worker, and what watches over them there."""
        table = process_table()
        node = f"SLURMD_NODENAME={worker}".encode()
        own = set(descendants(os.getpid()))
        tasks = {pid for pid in own if pid in table and node in table[pid][1]}
        watchers = {table[pid][0] for pid in tasks} - tasks
        return tasks, {pid for pid in watchers if pid in own and table[pid][2].startswith(b"slurmstepd")}

    def fell(self, worker):
        """Ends a worker as a power failure would: daemon, watchers and tasks at once."""
        self.kill(self.daemons[worker].pid, signal.SIGKILL)
        tasks, watchers = self.tasks_of(worker)
        for pid in watchers | tasks:
            self.kill(pid, signal.SIGKILL)
        self.daemons[worker].wait()

"""Runs commands so that nothing which they start outlives them: not in their group, not in a session of its own."""
import os
import pathlib
import signal
import subprocess
import time

PASSED, FAILED, UNENDING = "passed", "failed", "did not end"
MARK = "MUTATED_PROGRAMS"  # in the environment of all that a job starts: the job's folder

stopping = False  # once set, no command counts any more


class Stopped(Exception):
    """The run ends before its commands have."""


def stop():
    global stopping
    stopping = True


def has_mark(process, mark):
    try:
        return mark in (process / "environ").read_bytes().split(b"\0")
    except OSError:
        return False  # has ended, or is another user's


def marked(folder):
    """What carries the mark of a job's folder, also what has left its process group."""
    mark = f"{MARK}={folder}".encode()
    return [int(process.name) for process in pathlib.Path("/proc").glob("[0-9]*")
            if int(process.name) != os.getpid() and has_mark(process, mark)]


def end_marked(folder):
    """Ends that, and what it has started meanwhile."""
    while found := marked(folder):
        for process in found:
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass
        time.sleep(0.01)


def run(command, folder, seconds, output=subprocess.DEVNULL, **environment):
    """Whether the command passes, fails, or does not end in time. What it leaves running ends with it."""
    if stopping:
        raise Stopped
    began = subprocess.Popen(command, cwd=folder, env={**os.environ, **environment}, start_new_session=True,
                             stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.DEVNULL)
    try:
        outcome = PASSED if began.wait(seconds) == 0 else FAILED
    except subprocess.TimeoutExpired:
        outcome = UNENDING
    finally:
        try:
            os.killpg(began.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        began.wait()
        if MARK in environment:
            end_marked(environment[MARK])
    if stopping:
        raise Stopped
    return outcome

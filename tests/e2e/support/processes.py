"""Information from the kernel about processes."""

import contextlib
import ipaddress
import os
import pathlib
import struct

from support.waiting import wait_until


def field(pid, name):
    """A field of the process's status; None when the process is gone."""
    try:
        for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
            key, _, value = line.partition(":")
            if key == name:
                return value.strip()
    except OSError:
        pass
    return None


def environment(pid):
    """The environment that a process was started with. For a moment after its start, the kernel shows none."""
    text = wait_until(
        lambda: pathlib.Path(f"/proc/{pid}/environ").read_text(errors="replace"), "the process has an environment"
    )
    return dict(entry.split("=", 1) for entry in text.split("\0") if entry)


def descriptors(pid):
    """How many file descriptors a process has open."""
    return len(list(pathlib.Path(f"/proc/{pid}/fd").iterdir()))


def files(pid):
    """The files and sockets that the file descriptors of a process refer to."""
    found = set()
    for file in pathlib.Path(f"/proc/{pid}/fd").iterdir():
        # The process may close the descriptor in the meantime.
        with contextlib.suppress(FileNotFoundError):
            found.add(os.readlink(file))
    return found


def accepted(pid, path):
    """How many connections to a local socket a process has accepted and not closed."""
    own = files(pid)
    # State, inode and path. A connection has an inode only once it is accepted.
    entries = [line.split(None, 7)[5:] for line in pathlib.Path(f"/proc/{pid}/net/unix").read_text().splitlines()[1:]]
    return sum(
        len(entry) == 3 and entry[0] == "03" and entry[2] == str(path) and f"socket:[{entry[1]}]" in own
        for entry in entries
    )


def is_alive(pid):
    state = field(pid, "State")
    return state is not None and state[0] not in "ZX"


def runs(pid):
    """Whether a process is at work, and neither waits nor has ended."""
    return (field(pid, "State") or "").startswith("R")


def children(parent, name=None):
    """Living children of a process, optionally of one name only."""
    pids = [int(entry.name) for entry in pathlib.Path("/proc").iterdir() if entry.name.isdigit()]
    return [
        pid
        for pid in pids
        if field(pid, "PPid") == str(parent)
        and is_alive(pid)
        and (name is None or field(pid, "Name") == name)
    ]


def mentioning(text):
    """Living processes whose command line contains a text."""
    found = []
    for entry in pathlib.Path("/proc").iterdir():
        try:
            if entry.name.isdigit() and text in (entry / "cmdline").read_text(errors="replace") and is_alive(entry.name):
                found.append(int(entry.name))
        except OSError:
            continue
    return found


def listeners(pid):
    """All listening TCP sockets: what a descriptor of the socket refers to, and the local address."""
    for table in ("tcp", "tcp6"):
        # The file tcp6 does not exist without IPv6.
        path = pathlib.Path(f"/proc/{pid}/net/{table}")
        for line in path.read_text().splitlines()[1:] if path.exists() else []:
            _, local, _, state, *_, inode = line.split()[:10]
            if state == "0A":
                yield f"socket:[{inode}]", local


def listens(pid):
    """Addresses and ports on which a process accepts TCP connections."""
    own = files(pid)
    found = set()
    for file, local in listeners(pid):
        if file in own:
            address, _, port = local.partition(":")
            # 32-bit words in the byte order of the processor.
            words = struct.unpack(f">{len(address) // 8}I", bytes.fromhex(address))
            found.add((str(ipaddress.ip_address(struct.pack(f"={len(words)}I", *words))), int(port, 16)))
    return found


def connections(pid):
    """How many sockets a process has open that are not listening. Counts all others, because the kernel
    no longer lists a connection that its other end has reset."""
    entries = [line.split() for line in pathlib.Path(f"/proc/{pid}/net/unix").read_text().splitlines()[1:]]
    accepting = {f"socket:[{entry[6]}]" for entry in entries if entry[3] == "00010000"}
    accepting |= {file for file, _ in listeners(pid)}
    return sum(file.startswith("socket:") for file in files(pid) - accepting)

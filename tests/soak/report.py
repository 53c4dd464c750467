"""The results of a soak."""

import dataclasses

import memory


@dataclasses.dataclass
class Report:
    requests: dict
    problems: dict
    seconds: float
    slowest: float
    changes: int
    commands: int
    restarted: bool
    start: dict
    end: dict
    samples: dict
    new_blocks: int | None
    """How many more blocks of memory the service holds than at the start; None if they are not counted."""
    tolerance: int
    server_messages: int

    def total(self):
        return sum(self.requests.values())

    def slope(self, name):
        return memory.slope(self.samples[name])

    def resolution(self, name):
        return memory.resolution(self.samples[name])

    def limit(self, name):
        return self.tolerance * self.resolution(name)

    def growth(self):
        """The processes that need more and more memory."""
        return [name for name in self.start if self.slope(name) > self.limit(name)]

    def failures(self):
        """Returns all that is wrong."""
        found = [f"{count} x {problem}" for problem, count in self.problems.items()]
        if self.restarted:
            found.append("the service or the web server has ended meanwhile")
        if self.new_blocks:
            found.append(f"service: holds {self.new_blocks} more blocks of memory")
        found += [f"{name}: grows by {self.slope(name):.0f} bytes per thousand requests" for name in self.growth()]
        for name, before in self.start.items():
            after = self.end[name]
            for what in ("descriptors", "threads"):
                if getattr(after, what) != getattr(before, what):
                    found.append(f"{name}: {what}: {getattr(before, what)}, then {getattr(after, what)}")
        return found

    def data(self):
        return {
            "requests": self.total(),
            "requestsByKind": self.requests,
            "errors": sum(self.problems.values()),
            "seconds": round(self.seconds, 3),
            "requestsPerSecond": round(self.total() / self.seconds, 1),
            "slowestAnswerSeconds": round(self.slowest, 3),
            "deviceChanges": self.changes,
            "deviceCommands": self.commands,
            "restarted": self.restarted,
            "newBlocks": self.new_blocks,
            "webServerMessages": self.server_messages,
            "processes": {
                name: {
                    "start": dataclasses.asdict(self.start[name]),
                    "end": dataclasses.asdict(self.end[name]),
                    "bytesPerThousandRequests": round(self.slope(name), 1),
                    "resolution": round(self.resolution(name), 1),
                    "limit": round(self.limit(name), 1),
                    "samples": self.samples[name],
                }
                for name in self.start
            },
        }

    def text(self):
        lines = [f"{self.total()} requests in {self.seconds:.1f} s: {self.total() / self.seconds:.0f} a second"]
        lines += [f"  {count:>9} {kind}" for kind, count in self.requests.items()]
        lines.append(f"errors: {sum(self.problems.values())}; slowest answer: {self.slowest:.3f} s")
        lines.append(f"states of the device: {self.changes}, and {self.commands} changes by kestal-sim")
        for name, before in self.start.items():
            after = self.end[name]
            lines += [
                f"{name}:",
                f"  PSS        {before.pss / 1024:>8.0f} KiB, at the end {after.pss / 1024:.0f} KiB",
                f"  own memory {before.own / 1024:>8.0f} KiB, at the end {after.own / 1024:.0f} KiB",
                f"  growth     {self.slope(name):>8.1f} bytes per thousand requests"
                f" (one page: {self.resolution(name):.1f}, limit {self.limit(name):.1f})",
                f"  descriptors {before.descriptors}, at the end {after.descriptors};"
                f" threads {before.threads}, at the end {after.threads}",
            ]
        return "\n".join(lines)

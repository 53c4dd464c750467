"""Writes the results as Markdown tables that are also readable on a terminal."""

import statistics

SUBJECTS = ["service", "floor", "bare", "file"]
TREES = {"compat": "our answer tree", "system": "installed CTPP2"}
RECORDS = "notification, 25 records of all types"


def middle(samples):
    return statistics.median(samples)


def spread(samples, digits=0):
    """Median and range."""
    return f"{middle(samples):,.{digits}f} ({min(samples):,.{digits}f} to {max(samples):,.{digits}f})"


def table(head, rows):
    """Makes each column as wide as its widest cell and aligns all but the first one to the right."""
    rows = [head, *([str(cell) for cell in row] for row in rows)]
    widths = [max(len(row[column]) for row in rows) for column in range(len(head))]
    rule = ["-" * widths[0], *("-" * (width - 1) + ":" for width in widths[1:])]
    lines = []
    for row in [rows[0], rule, *rows[1:]]:
        cells = [row[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


def figures(operation, connections, kind, name):
    return [sample[name] for sample in operation["samples"][str(connections)][kind]]


def ratios(operation, connections, kind, name):
    """Compares round by round, because the two runs of a round followed each other directly."""
    own = figures(operation, connections, kind, name)
    floor = figures(operation, connections, "floor", name)
    return [one / other for one, other in zip(own, floor)]


def stack_table(stack, connections):
    rows = []
    for operation in stack["operations"]:
        if str(connections) not in operation["samples"]:
            rows.append([f"{operation['name']}: refused, other processes ran", *[""] * 8])
            continue
        for kind in SUBJECTS:

            def of(name, operation=operation, kind=kind):
                return figures(operation, connections, kind, name)

            rows.append(
                [
                    f"{operation['name']}: {kind}",
                    spread(of("requestsPerSecond")),
                    spread(ratios(operation, connections, kind, "requestsPerSecond"), 2),
                    f"{middle(of('p50')):,.0f}",
                    f"{middle(of('p99')):,.0f}",
                    "" if kind == "file" else f"{middle(of('processor')):.1f}",
                    ""
                    if kind == "file"
                    else f"{middle(ratios(operation, connections, kind, 'processor')):.2f}",
                    len(of("requests")),
                    f"{100 * max(of('foreign')):.1f}",
                ]
            )
    head = [
        "operation",
        "requests/s",
        "of the floor's",
        "p50 us",
        "p99 us",
        "processor us",
        "floors",
        "rounds",
        "other load %",
    ]
    return table(head, rows)


def instructions_table(counted_by_tree):
    """One column for each answer tree that the service was linked with. The floor has none."""
    first = next(iter(counted_by_tree.values()))
    rows = [
        [
            name,
            *(f"{counted[name]['service']:,}" for counted in counted_by_tree.values()),
            f"{kinds['floor']:,}",
            f"{kinds['service'] / kinds['floor']:.2f}",
            f"{kinds['bytes']:,}",
        ]
        for name, kinds in first.items()
    ]
    return table(["answer", *map(TREES.get, counted_by_tree), "the floor's", "floors", "bytes of the answer"], rows)


def small_machine_table(measured):
    pages, quarter, rounds = measured["pages"], measured["quarter"], measured["rounds"]
    rows = [
        [f"ten open pages: {name}, ms of processor time a second", f"{cost:.2f}"] for name, cost in pages.items()
    ]
    what = "a quarter of a processor: `status`"
    if quarter is None:
        rows.append([what, "refused, other processes ran"])
    else:
        rows.append([f"{what}, requests/s", f"{quarter['requestsPerSecond']:,.0f}"])
        rows.append([f"{what}, p99, ms", f"{quarter['p99'] / 1000:.1f}"])
        rows.append([f"{what}, other load %, median of {rounds} rounds", f"{100 * quarter['foreign']:.1f}"])
    load = ", ".join(f"{average:.2f}" for average in measured["loadAverage"])
    return (
        f"Ten open pages keep one processor core busy for {sum(pages.values()):.1f} milliseconds a second.\n"
        f"Load averages of the machine before the start: {load}.\n\n" + table(["what", "figure"], rows)
    )


def without_figures(stack):
    """The rows that were disturbed in all rounds."""
    return [
        f"{operation['name']} at {connections} connections"
        for operation in stack["operations"]
        for connections in (1, 8, 32)
        if str(connections) not in operation["samples"]
    ]


def record_cost(in_process, records):
    """Nanoseconds per record."""
    empty = middle(in_process["Notifications/0"]["nanoseconds"])
    return (middle(in_process[f"Notifications/{records}"]["nanoseconds"]) - empty) / records


def of_floor(operation, connections, name):
    """Median over the rounds of the ratio to the floor within a round; None if other processes always ran."""
    if str(connections) not in operation["samples"]:
        return None
    return middle(ratios(operation, connections, "service", name))


def targets(results):
    """Returns rows of what is measured, the figure, the limit, and whether the figure must be at least the
    limit or at most."""
    stack, inside, counted = results["stack"], results["inProcess"], results["instructions"]
    status = stack["operations"][0]
    rapid = middle(inside["RapidJsonOfStatusKeys"]["nanoseconds"])
    start = middle(stack["start"]["service"]) / middle(stack["start"]["floor"])
    rows = [
        ("`status`: instructions", counted["status"]["service"], 70_000, "most"),
        ("25 records of all types: instructions", counted[RECORDS]["service"], 200_000, "most"),
    ]
    for connections in (8, 32):
        at = f"at {connections} connections"
        rate = of_floor(status, connections, "requestsPerSecond")
        rows.append((f"`status`: requests/s {at}, of the floor's", rate, 0.9, "least"))
        rows.append((f"`status`: p99 {at}, in floors", of_floor(status, connections, "p99"), 1.2, "most"))
    rows += [
        ("`status`: processor time at 8 connections, in floors", of_floor(status, 8, "processor"), 1.35, "most"),
        ("`status` in process, in times of RapidJSON", middle(inside["Status"]["nanoseconds"]) / rapid, 3, "most"),
        (
            "`status` in process with its JSON, in times of RapidJSON",
            middle(inside["StatusAsJson"]["nanoseconds"]) / rapid,
            3,
            "most",
        ),
        ("a record of 100 in process, microseconds", record_cost(inside, 100) / 1000, 3, "most"),
        (
            "a record of 10,000, in times of one of 100",
            record_cost(inside, 10000) / record_cost(inside, 100),
            1.1,
            "most",
        ),
        ("start to first answer, in floors", start, 2, "most"),
        ("program, stripped, MiB", results["programBytes"] / 2**20, 1, "most"),
    ]
    growth = stack["growth"]
    if growth is not None:
        above = (growth["service"]["after"] - growth["floor"]["after"]) / 1024
        grown = (growth["service"]["after"] - growth["service"]["before"]) / 1024
        rows.append(("memory after a million requests, MiB above the floor's", above, 2, "most"))
        rows.append(("memory that a million requests add, MiB", grown, 0.1, "most"))
    return rows


def target_cell(figure, limit, side):
    if figure is None:
        return "refused"
    kept = figure >= limit if side == "least" else figure <= limit
    return f"{figure:,.{0 if limit >= 100 else 2}f}{'' if kept else ' (missed)'}"


def targets_table(results_by_tree):
    """One column of figures for each answer tree that was measured."""
    columns = [targets(results) for results in results_by_tree.values()]
    rows = []
    for versions in zip(*columns):
        what, _, limit, side = versions[0]
        digits = 0 if limit >= 100 else 2
        cells = [target_cell(figure, limit, side) for _, figure, _, _ in versions]
        rows.append([what, *cells, f"at {side} {limit:,.{digits}f}"])
    return table(["what", *(TREES[tree] for tree in results_by_tree), "target"], rows)


def markdown(results_by_tree):
    """The targets for each answer tree, and everything else for the first one."""
    results = next(iter(results_by_tree.values()))
    stack, inside = results["stack"], results["inProcess"]
    load = ", ".join(f"{average:.2f}" for average in results["loadAverage"])
    parts = [
        f"Commit {results['commit']}, {results['rounds']} rounds, in which wrk sends requests for {results['seconds']} s"
        f" each time; load averages of the machine before the start: {load}.",
        "### Targets",
        targets_table(results_by_tree),
    ]
    parts.append("### Instructions of one request")
    parts.append(instructions_table({tree: each["instructions"] for tree, each in results_by_tree.items()}))
    for connections in [8, 1, 32]:
        parts.append(f"### Whole stack, {connections} connection{'s' if connections > 1 else ''}")
        parts.append(stack_table(stack, connections))
    parts.append("### Memory (PSS) and start")
    first = stack["operations"][0]["memory"]
    rows = [[f"{kind}: PSS, KiB", f"{kib:,}"] for kind, kib in first.items()]
    for kind, samples in stack["start"].items():
        rows.append([f"{kind}: start to first answer, ms", spread(samples, 2)])
    for kind, memory in (stack["growth"] or {}).items():
        rows.append(
            [
                f"{kind}: PSS before and after {memory['requests']:,} requests, KiB",
                f"{memory['before']:,} {memory['after']:,}",
            ]
        )
    parts.append(table(["what", "figure"], rows))
    parts.append("### In process")
    rapid = middle(inside["RapidJsonOfStatusKeys"]["nanoseconds"])
    parts.append(
        table(
            ["what", "nanoseconds", "in times of RapidJSON", "allocations"],
            [
                [
                    name.removeprefix("StatusGroup/"),
                    spread(result["nanoseconds"]),
                    f"{middle(result['nanoseconds']) / rapid:.2f}",
                    f"{result['allocations']:,}" if "allocations" in result else "",
                ]
                for name, result in inside.items()
            ],
        )
    )
    return "\n\n".join(parts) + "\n"

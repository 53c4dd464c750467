"""Writes the results as Markdown tables that are also readable on a terminal."""

import statistics

SUBJECTS = ["service", "floor", "bare", "file"]


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
                ]
            )
    head = ["operation", "requests/s", "of the floor's", "p50 us", "p99 us", "processor us", "floors"]
    return table(head, rows)


def instructions_table(counted):
    rows = [
        [
            name,
            f"{kinds['service']:,}",
            f"{kinds['floor']:,}",
            f"{kinds['service'] / kinds['floor']:.2f}",
            f"{kinds['bytes']:,}",
        ]
        for name, kinds in counted.items()
    ]
    return table(["answer", "instructions", "the floor's", "floors", "bytes of the answer"], rows)


def record_cost(in_process, records):
    """Nanoseconds per record."""
    empty = middle(in_process["Notifications/0"]["nanoseconds"])
    return (middle(in_process[f"Notifications/{records}"]["nanoseconds"]) - empty) / records


def targets(results):
    """Returns rows of name, figure, limit and whether the figure keeps the limit."""
    stack, inside = results["stack"], results["inProcess"]
    status = stack["operations"][0]
    rapid = middle(inside["RapidJsonOfStatusKeys"]["nanoseconds"])
    rate = middle(ratios(status, 8, "service", "requestsPerSecond"))
    processor = middle(ratios(status, 8, "service", "processor"))
    dispatch = middle(inside["Status"]["nanoseconds"]) / rapid
    answer = middle(inside["StatusAsJson"]["nanoseconds"]) / rapid
    linear = record_cost(inside, 10000) / record_cost(inside, 100)
    start = middle(stack["start"]["service"]) / middle(stack["start"]["floor"])
    rows = [
        ("`status`: requests/s at 8 connections, of the floor's", rate, 0.8, rate >= 0.8),
        ("`status`: processor time, in floors", processor, 1.6, processor <= 1.6),
        ("`status` in process, in times of RapidJSON", dispatch, 3.0, dispatch <= 3),
        ("`status` in process with its JSON, in times of RapidJSON", answer, 3.0, answer <= 3),
        ("a record of 10,000, in times of one of 100", linear, 1.2, linear <= 1.2),
        ("start to first answer, in floors", start, 2.0, start <= 2),
        ("program, stripped, MiB", results["programBytes"] / 2**20, 1.0, results["programBytes"] < 2**20),
    ]
    growth = stack["growth"]
    if growth is not None:
        above = (growth["service"]["after"] - growth["floor"]["after"]) / 1024
        grown = (growth["service"]["after"] - growth["service"]["before"]) / 1024
        rows.append(("memory after a million requests, MiB above the floor's", above, 2.0, above <= 2))
        rows.append(("memory that a million requests add, MiB", grown, 0.1, grown <= 0.1))
    return rows


def markdown(results):
    stack, inside = results["stack"], results["inProcess"]
    parts = ["### Targets"]
    parts.append(
        table(
            ["what", "median", "target", "kept"],
            [
                [what, f"{figure:.2f}", f"{limit:.2f}", "yes" if kept else "no"]
                for what, figure, limit, kept in targets(results)
            ],
        )
    )
    parts.append("### Instructions of one request")
    parts.append(instructions_table(results["instructions"]))
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

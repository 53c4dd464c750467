"""Draws the requests per second of each operation at 8 connections as SVG, relative to the floor's."""

import html

import report

COLOURS = {"service": "#1f6feb", "floor": "#8c959f", "bare": "#57606a"}
LEFT, WIDTH, BAR, GAP, TOP = 210, 420, 14, 18, 54


def svg(results):
    operations = results["stack"]["operations"]
    rows = []
    y = TOP
    longest = max(
        report.middle(report.ratios(operation, 8, kind, "requestsPerSecond"))
        for operation in operations
        for kind in COLOURS
    )
    for operation in operations:
        name = html.escape(operation["name"])
        rows.append(f'<text x="{LEFT - 10}" y="{y + 1.9 * BAR:.0f}" text-anchor="end">{name}</text>')
        for kind, colour in COLOURS.items():
            samples = report.ratios(operation, 8, kind, "requestsPerSecond")
            value = report.middle(samples)
            length = WIDTH * value / longest
            rows.append(
                f'<rect x="{LEFT}" y="{y}" width="{length:.1f}" height="{BAR - 2}" fill="{colour}">'
                f"<title>{name}, {kind}: {value:.2f}</title></rect>"
            )
            rows.append(f'<text x="{LEFT + length + 6:.1f}" y="{y + BAR - 4}">{value:.2f}</text>')
            y += BAR
        y += GAP
    legend = []
    x = LEFT
    for kind, colour in COLOURS.items():
        legend.append(f'<rect x="{x}" y="30" width="12" height="12" fill="{colour}"/>')
        legend.append(f'<text x="{x + 18}" y="40">{kind}</text>')
        x += 90
    total = LEFT + WIDTH + 60
    return "\n".join(
        [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {total} {y}" font-family="sans-serif"'
            ' font-size="12" fill="#24292f">',
            "<title>Requests per second at 8 connections, in parts of the floor\'s</title>",
            f'<rect width="{total}" height="{y}" fill="#ffffff"/>',
            '<text x="10" y="18" font-weight="bold">Requests per second at 8 connections, in parts'
            " of the floor\'s (median)</text>",
            *legend,
            *rows,
            "</svg>",
            "",
        ]
    )

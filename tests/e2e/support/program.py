"""Programs that the web server starts in place of the service."""

from support import paths


def service_with(program, **variables):
    """Writes a program that starts the service with these variables, which the web server does not pass on or sets
    itself; returns its path."""
    settings = " ".join(f'{name}="{value}"' for name, value in variables.items())
    program.write_text(f'#!/bin/sh\n{settings} exec "{paths.SERVICE}"\n')
    program.chmod(0o755)
    return program

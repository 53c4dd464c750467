#!/bin/sh
# CGI program of scripts/run --control: hands the request on to kestal-sim.
set -eu

if answer=$("$KESTAL_SIM" control); then
    printf 'Content-Type: application/json\r\n\r\n%s\n' "$answer"
else
    printf 'Status: 500\r\nContent-Type: text/plain\r\n\r\nkestal-sim has failed; the log says why.\n'
fi

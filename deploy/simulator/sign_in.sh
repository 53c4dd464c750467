#!/bin/sh
# CGI program of serve.sh: logs in the browser that asks, and shows it the page.
set -eu

if [ "$REQUEST_METHOD" != GET ]; then
    printf 'Status: 405\r\nAllow: GET\r\n\r\n'
    exit
fi
# Requests do not keep a session alive, so it lasts a day.
if cookie=$("$KESTAL_SIM" session open --address="$REMOTE_ADDR" --user-agent="${HTTP_USER_AGENT-}" --idle=86400); then
    printf 'Status: 303\r\nSet-Cookie: %s; Path=/; SameSite=Lax\r\nLocation: /\r\n\r\n' "$cookie"
else
    printf 'Status: 500\r\nContent-Type: text/plain\r\n\r\nThe session store refuses a session; the log says why.\n'
fi

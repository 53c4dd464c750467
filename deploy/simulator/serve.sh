# shellcheck shell=sh disable=SC2154
# Runs the service behind a web server on a simulated device, until Ctrl-C. scripts/run and kestal-demo read this
# file. Before that, they set:
#
#   program          their name in messages
#   control_help     help for --control, or ""
#   variables_help   help for variables of their own, or ""
#   prepare          a function that is called when the options are known to be right, and sets the rest:
#   simulated        "yes", or "" for another binding
#   sim              the program kestal-sim
#   service          the program kestal.cgi
#   launcher         the program kestal-server
#   configuration    the web server's configuration on a device
#   texts, locales   folders of translations and locales
#   pages            folder of the page
#   shipped          folder of devices/ and scenarios/
#   extras           folder of this file
#   control          folder of control.conf and control.sh; "" where there is no --control
#
# usage: . serve.sh, with the options of the program as arguments

group=
ended=
player=
work=

usage() {
    cat << END
Runs the service behind a web server, on a simulated device, until Ctrl-C.

usage: $program [OPTION]...

  --port N           port to listen on (default 8080)
  --device DEVICE    a document, which is changed in place, or the name of a shipped one, of which a
                     copy is used and removed at the end (default: default)
  --scenario NAME    what the device does by itself: a file, the name of a shipped one, or "none"
                     (default: gentle; none if a device is chosen)
  --page FOLDER      static files to serve, in place of the page that comes with the service
  --origin ORIGIN    a page of this origin, such as http://localhost:5173, may call the service, too
${control_help:+$control_help
}  --help             print this

Each option takes the place of a variable of the environment:

  PORT or KESTAL_PORT  --port
  KESTAL_DEVICE    --device
  KESTAL_SCENARIO  --scenario
  KESTAL_DOCUMENT_ROOT  --page
  KESTAL_PAGE_ORIGIN    --origin

Other variables:

  KESTAL_SESSIONS  the session store (default: a new one, removed at the end)
${variables_help:+$variables_help
}
kestal-server names those of web server and service, such as KESTAL_ADDRESS and KESTAL_LOG.
END
}

fail() {
    echo "$program: $*" >&2
    exit 1
}

misused() {
    echo "$program: $*; --help tells what there is" >&2
    exit 2
}

# Sets variable $2 to $3, the value of option $1, and says so if the environment has another value.
choose() {
    [ -n "$3" ] || misused "$1 needs a value"
    former=$(printenv "$2") || former=
    if [ -n "$former" ] && [ "$former" != "$3" ]; then
        echo "$program: $1 $3 takes the place of $2=$former" >&2
    fi
    export "$2=$3"
}

# The names of the documents in a folder.
names_in() {
    for document in "$shipped/$1"/*.json; do
        document=${document##*/}
        printf ' %s' "${document%.json}"
    done
}

# Fails if what has been chosen for the simulated device does not exist.
must_exist() {
    if [ -n "${KESTAL_DEVICE-}" ] && [ ! -r "$KESTAL_DEVICE" ] && [ ! -f "$shipped/devices/$KESTAL_DEVICE.json" ]; then
        fail "cannot read the device's file $KESTAL_DEVICE, and devices/ has only$(names_in devices)"
    fi
    case ${KESTAL_SCENARIO-} in
        '' | none) ;;
        *)
            if [ ! -r "$KESTAL_SCENARIO" ] && [ ! -f "$shipped/scenarios/$KESTAL_SCENARIO.json" ]; then
                fail "the device cannot play $KESTAL_SCENARIO: there is no such file, and scenarios/ has only$(names_in scenarios)"
            fi
            ;;
    esac
}

commands=
# An option that only a simulated device has, if one is given.
of_simulator=
while [ $# -gt 0 ]; do
    option=$1
    shift
    case $option in
        --control | --control=*)
            [ -n "$control" ] || misused "unknown option --control"
            [ "$option" = --control ] || misused "--control needs no value"
            commands=yes
            of_simulator=$option
            continue
            ;;
        --help | -h)
            usage
            exit
            ;;
        --*=*)
            value=${option#*=}
            option=${option%%=*}
            ;;
        --*)
            value=${1-}
            [ $# -eq 0 ] || shift
            ;;
        *) misused "unknown argument $option" ;;
    esac
    case $option in
        --port)
            choose "$option" PORT "$value"
            choose "$option" KESTAL_PORT "$value"
            ;;
        --device)
            choose "$option" KESTAL_DEVICE "$value"
            of_simulator=$option
            ;;
        --scenario)
            choose "$option" KESTAL_SCENARIO "$value"
            of_simulator=$option
            ;;
        --page) choose "$option" KESTAL_DOCUMENT_ROOT "$value" ;;
        --origin) choose "$option" KESTAL_PAGE_ORIGIN "$value" ;;
        *) misused "unknown option $option" ;;
    esac
done
if [ -n "${PORT-}" ] && [ -n "${KESTAL_PORT-}" ] && [ "$PORT" != "$KESTAL_PORT" ]; then
    echo "$program: PORT=$PORT takes the place of KESTAL_PORT=$KESTAL_PORT" >&2
fi
port=${PORT:-${KESTAL_PORT:-8080}}
address=${KESTAL_ADDRESS:-127.0.0.1}
# Every address of this machine includes the one that this script asks.
case $address in
    0.0.0.0) url=http://127.0.0.1:$port ;;
    :: | "[::]") url="http://[::1]:$port" ;;
    \[*) url=http://$address:$port ;;
    *:*) url="http://[$address]:$port" ;;
    *) url=http://$address:$port ;;
esac
case ${KESTAL_PAGE_ORIGIN-} in
    '') ;;
    *[!A-Za-z0-9.:/-]* | http*://*/* | http*:*:*:* | *:) misused "not an origin, such as http://localhost:5173: $KESTAL_PAGE_ORIGIN" ;;
    http://?* | https://?*) ;;
    *) misused "not an origin, such as http://localhost:5173: $KESTAL_PAGE_ORIGIN" ;;
esac
case $port in
    *[!0-9]* | 0* | ??????*) misused "not a port from 1 to 65535: $port" ;;
esac
[ "$port" -le 65535 ] || misused "not a port from 1 to 65535: $port"
[ -z "${KESTAL_DOCUMENT_ROOT-}" ] || [ -d "$KESTAL_DOCUMENT_ROOT" ] || fail "no folder of static files: $KESTAL_DOCUMENT_ROOT"

# Each child runs in its own session (setsid), so that Ctrl-C on the terminal reaches only this script,
# which then stops the build with all its processes, or the web server, which stops the service. The
# shell starts a child and sets $! without handling a signal in between, so no child is missed.
# shellcheck disable=SC2317 # called by the trap
finish() {
    status=$?
    trap '' INT QUIT TERM HUP
    child=${!-}
    if [ -n "$player" ]; then
        kill -s TERM "$player" 2>/dev/null || true
        wait "$player" || true
    fi
    if [ "$child" != "$ended" ] && [ "$child" != "$player" ]; then
        # A child that has just been started may not have its process group yet.
        kill -s TERM -- "$group$child" 2>/dev/null || kill -s TERM "$child" 2>/dev/null || true
        wait "$child" || true
    fi
    if [ -n "$work" ]; then
        KESTAL_RUN_DIRECTORY=$run "$launcher" sweep || true
        rm -rf "$work"
    fi
    exit "$status"
}
trap finish EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 131' QUIT
trap 'exit 143' TERM

prepare

scenario=${KESTAL_SCENARIO:-${KESTAL_DEVICE:+none}}
scenario=${scenario:-gentle}
[ ! -f "$shipped/scenarios/$scenario.json" ] || scenario=$shipped/scenarios/$scenario.json

work=$(mktemp -d "${TMPDIR:-/tmp}/kestal.XXXXXXXX")
run=${KESTAL_RUN_DIRECTORY:-$work/run}
named=$shipped/devices/${KESTAL_DEVICE:-default}.json
[ -z "$simulated" ] || must_exist
if [ -z "$simulated" ]; then
    [ -z "$of_simulator" ] || fail "$of_simulator needs a simulated device"
    scenario=none
elif [ -z "${KESTAL_DEVICE-}" ] || { [ ! -e "$KESTAL_DEVICE" ] && [ -f "$named" ]; }; then
    KESTAL_DEVICE=$work/device.json
    cp "$named" "$KESTAL_DEVICE"
else
    KESTAL_DEVICE=$(cd "$(dirname "$KESTAL_DEVICE")" && pwd -P)/${KESTAL_DEVICE##*/}
fi
if [ -n "$simulated" ]; then
    KESTAL_SESSIONS=${KESTAL_SESSIONS:-$work/sessions}
    case $KESTAL_SESSIONS in
        /*) ;;
        *) KESTAL_SESSIONS=$PWD/$KESTAL_SESSIONS ;;
    esac
    export KESTAL_DEVICE KESTAL_SESSIONS
fi
export KESTAL_RUN_DIRECTORY="$run" KESTAL_ADDRESS="$address" KESTAL_PORT="$port"
export KESTAL_RESPONDER="${KESTAL_RESPONDER:-$service}"
export KESTAL_DOCUMENT_ROOT="${KESTAL_DOCUMENT_ROOT:-$pages}"
# Use texts and locales that come with the service, so that every language works without a locale of the machine.
export KESTAL_LOCALEDIR="${KESTAL_LOCALEDIR:-$texts}"
if [ -n "$simulated" ]; then
    export LOCPATH="${LOCPATH:-$locales}"
fi

# The web server has the configuration of a device, and what developers of pages need beside it.
sign_in=
if [ -z "${KESTAL_CONFIGURATION-}" ]; then
    KESTAL_CONFIGURATION=$work/lighttpd.conf
    export KESTAL_CONFIGURATION KESTAL_DEPLOYED_CONFIGURATION="$configuration"
    echo 'include env.KESTAL_DEPLOYED_CONFIGURATION' > "$KESTAL_CONFIGURATION"
    if [ -n "${KESTAL_PAGE_ORIGIN-}" ]; then
        export KESTAL_ORIGINS="${KESTAL_ORIGINS:+$KESTAL_ORIGINS }$KESTAL_PAGE_ORIGIN"
        export KESTAL_PAGE_ORIGIN
        cat "$extras/page_origin.conf" >> "$KESTAL_CONFIGURATION"
    fi
    if [ -n "$simulated" ] && [ -x "$sim" ]; then
        echo 'server.modules += ( "mod_alias", "mod_cgi" )' >> "$KESTAL_CONFIGURATION"
        # Nobody can guess the link, so no page of another site can log a browser in.
        sign_in=/sign-in/$(od -An -N16 -tx1 /dev/urandom | tr -d ' \n')
        export KESTAL_SIM="$sim" KESTAL_SIGN_IN="$sign_in" KESTAL_SIGN_IN_PROGRAM="$extras/sign_in.sh"
        cat "$extras/sign_in.conf" >> "$KESTAL_CONFIGURATION"
        if [ -n "$commands" ]; then
            export KESTAL_CONTROL_PROGRAM="$control/control.sh"
            cat "$control/control.conf" >> "$KESTAL_CONFIGURATION"
        fi
    fi
elif [ -n "${KESTAL_PAGE_ORIGIN-}$commands" ]; then
    fail "--origin and --control need the shipped configuration, and KESTAL_CONFIGURATION names another"
fi

# The player may be stopped twice, by Ctrl-C and by this script; that does no harm.
if [ "$scenario" != none ] && [ -x "$sim" ]; then
    "$sim" play --check "$scenario" || fail "the device cannot play $scenario"
    "$sim" --device "$KESTAL_DEVICE" play --loop --quiet "$scenario" &
    player=$!
fi

setsid "$launcher" &
child=$!

# The web server writes its process id file once it listens on its port.
tries=100
until [ "$(cat "$run/server.pid" 2>/dev/null)" = "$child" ]; do
    if [ "$tries" -eq 0 ] || ! kill -0 "$child" 2>/dev/null; then
        fail "the web server does not start on port $port (--port chooses another)"
    fi
    sleep 0.1
    tries=$((tries - 1))
done
curl -fsS --noproxy '*' -o /dev/null --max-time 30 "$url/srv/status" || fail "the service does not answer"

# From here on, being stopped is the normal end, so the exit status is 0.
trap 'exit 0' INT TERM

if [ -n "$simulated" ]; then
    device='a simulated device'
else
    device='the libraries of its build'
fi
cat << END

The service is running on $device. Its page:

  $url/

Or try:

  curl $url/srv/status
  curl $url/srv/notification
  curl $url/srv/disconnect
  curl $url/srv/connect
END
[ -z "$simulated" ] || cat << END

As a logged-in user, in the browser or elsewhere:

  ${sign_in:+$url$sign_in
}
  export KESTAL_SESSIONS=$KESTAL_SESSIONS
  curl -A me -b "\$($sim session open --address 127.0.0.1 --user-agent me)" $url/srv/status

The device, to be edited while the service runs:

  $KESTAL_DEVICE

or with a command:

  export KESTAL_DEVICE=$KESTAL_DEVICE
  $sim set sys.getBatteryStatus.chargePercent 9
  $sim fail sys.getGPSStatus 5
  $sim heal sys.getGPSStatus
  $sim notify smsReceived
  $sim play $shipped/scenarios/commute.json

What it is like, and which calls requests make:

  $sim status
  $sim watch

What it does by itself: $scenario (--scenario chooses, none for nothing).
END
echo
echo "Ctrl-C stops it."

status=0
wait "$child" || status=$?
ended=$child
fail "the web server has ended with status $status"

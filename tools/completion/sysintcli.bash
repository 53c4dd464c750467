# shellcheck shell=bash
# Completes sysintcli and its other name sysinicli.

_sysintcli() {
    local words=--help
    if [ "$COMP_CWORD" -eq 1 ]; then
        words="--help --commands --version $("$1" --commands 2>/dev/null)"
    elif [ "${COMP_WORDS[1]} $COMP_CWORD" = 'getWiFiGuestProfileEnabled 2' ]; then
        words='--help 1 2'
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _sysintcli sysintcli sysinicli

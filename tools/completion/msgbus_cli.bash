# shellcheck shell=bash
# Completes msgbus_cli.

_msgbus_cli() {
    local words
    if [ "$COMP_CWORD" -eq 1 ]; then
        words="--help --commands --version $("$1" --commands 2>/dev/null)"
    else
        words='--help --raw zelt.ans.notifications'
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _msgbus_cli msgbus_cli

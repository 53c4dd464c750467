# shellcheck shell=bash
# Completes kestal-messages.

_kestal_messages() {
    local words="--help --commands --version --socket list read"
    if [ "${COMP_WORDS[COMP_CWORD - 1]}" = read ]; then
        words="unread $("$1" list 2>/dev/null | cut -c3-10)"
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _kestal_messages kestal-messages

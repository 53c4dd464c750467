# shellcheck shell=bash
# Completes kestal-sources.

_kestal_sources() {
    local words="--help --commands --version --socket list show"
    if [ "${COMP_WORDS[COMP_CWORD - 1]}" = show ]; then
        words=$("$1" list 2>/dev/null | sed 's/ .*//')
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _kestal_sources kestal-sources

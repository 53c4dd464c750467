# shellcheck shell=bash
# Completes kestal-record.

_kestal_record() {
    local word=${COMP_WORDS[COMP_CWORD]} file quoted
    local words
    COMPREPLY=()
    if [[ $word == -* ]]; then
        # Only the recorder of a Linux board has an option for a socket.
        words=$("$1" --help 2>/dev/null | sed -n 's/^  \(-h,\)\?\(--[a-z-]*\).*/\2/p')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
        return
    fi
    while IFS= read -r file; do
        printf -v quoted %q "$file"
        [[ $file != '~'* ]] || quoted=${quoted#\\}
        COMPREPLY+=("$quoted")
    done < <(compgen -f -- "$word")
}
complete -F _kestal_record kestal-record

# shellcheck shell=bash
# Completes kestal-record.

_kestal_record() {
    local word=${COMP_WORDS[COMP_CWORD]} file quoted
    local words='--for --every --names --channels --keep-identities --bundle --log --force --socket --version --help'
    COMPREPLY=()
    if [[ $word == -* ]]; then
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

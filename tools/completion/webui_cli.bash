# shellcheck shell=bash
# Completes webui_cli.

_webui_cli() {
    local words=--help
    if [ "$COMP_CWORD" -eq 1 ]; then
        words="--help --commands --version $("$1" --commands 2>/dev/null)"
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _webui_cli webui_cli

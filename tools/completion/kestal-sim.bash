# shellcheck shell=bash
# Completes kestal-sim.

# Adds the candidates that begin with the word to the completions, quoted. compgen -W cannot be used:
# names in a device's document may contain any text, and compgen -W would expand commands in it.
_kestal_sim_offer() {
    local word=$1 candidate quoted
    shift
    for candidate in "$@"; do
        printf -v quoted %q "$candidate"
        if [[ $candidate == "$word"* || $quoted == "$word"* ]]; then
            COMPREPLY+=("$quoted")
        fi
    done
}

# The same for files; a tilde at the beginning stays the home directory.
_kestal_sim_offer_files() {
    local file quoted
    while IFS= read -r file; do
        printf -v quoted %q "$file"
        [[ $file != '~'* ]] || quoted=${quoted#\\}
        COMPREPLY+=("$quoted")
    done < <(compgen -f -- "$1")
}

_kestal_sim() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands='show set fail heal devices scenarios load reset notify session play status watch record control'
    local command='' member='' device=() index words='' names=()
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if [ "${COMP_WORDS[index]}" = --device ]; then
            device=(--device "${COMP_WORDS[++index]}")
        elif [[ ${COMP_WORDS[index]} != -* ]]; then
            command=${COMP_WORDS[index]}
            ((index + 1 == COMP_CWORD)) || member=${COMP_WORDS[index + 1]}
            break
        fi
    done
    COMPREPLY=()
    if [ "$previous" = --device ]; then
        _kestal_sim_offer_files "$word"
        return
    fi
    case $command in
        '') words="--device --commands --version --help $commands" ;;
        show | set | fail | heal)
            words=--help
            if [ "$command" = show ]; then
                words='--paths --help'
            elif [ "$command" = fail ]; then
                words='--times --probability --seed --delay --hang --help'
            fi
            mapfile -t names < <("$1" "${device[@]}" show --paths 2>/dev/null)
            ;;
        load)
            words='--restart --help'
            mapfile -t names < <("$1" devices 2>/dev/null | sed 's/ .*//')
            _kestal_sim_offer_files "$word"
            ;;
        reset)
            words='--restart --help'
            ;;
        status)
            words='--follow --help'
            ;;
        devices | scenarios | watch | control)
            words=--help
            ;;
        notify)
            if [ "$previous" = --severity ]; then
                words='info warning alert critical'
            else
                words='--clear --types --severity --category --label --title --text --inactive --help'
                mapfile -t names < <("$1" notify --types 2>/dev/null)
            fi
            ;;
        session)
            case $member in
                '') words='open renew close list --help' ;;
                open) words='--address --user-agent --idle --help' ;;
                close) words='--all --help' ;;
                *) words=--help ;;
            esac
            ;;
        record)
            words='--for --every --names --channels --keep-identities --bundle --log --force --help'
            _kestal_sim_offer_files "$word"
            ;;
        play)
            words='--speed --loop --quiet --check --help'
            mapfile -t names < <("$1" scenarios 2>/dev/null | sed 's/ .*//')
            _kestal_sim_offer_files "$word"
            ;;
    esac
    local matches
    mapfile -t matches < <(compgen -W "$words" -- "$word")
    COMPREPLY+=("${matches[@]}")
    _kestal_sim_offer "$word" "${names[@]}"
}
complete -F _kestal_sim kestal-sim

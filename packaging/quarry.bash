# Completes the verbs of the quarry command, their options and the names of operations. They come from the command's own
# help, so they are those of the installed version. Everything else is completed as a file name.
# shellcheck shell=bash

# Prints the first name in each line of one section of a help text.
_quarry_section() {
    sed -n "/^$1:/,/^\$/s/^  \(-[[:alnum:]],\)\{0,1\}\([[:alnum:]-]*\).*/\2/p"
}

_quarry() {
    local quarry=${COMP_WORDS[0]/#\~\//$HOME/} word=${COMP_WORDS[COMP_CWORD]} verb='' candidates='' operations='' i
    for ((i = 1; i < COMP_CWORD; i++)); do
        [[ ${COMP_WORDS[i]} == -* ]] || { verb=${COMP_WORDS[i]} && break; }
    done

    # `scan` has operations as subcommands; the options of the given one are completed along with those of scan.
    if [[ $verb == scan ]]; then
        operations=$("$quarry" scan --help 2>/dev/null | _quarry_section Subcommands)
        for ((i = 1; i < COMP_CWORD; i++)); do
            [[ $'\n'$operations$'\n' != *$'\n'"${COMP_WORDS[i]}"$'\n'* ]] || verb="scan ${COMP_WORDS[i]}"
        done
    fi

    COMPREPLY=()
    if [[ $word == -* ]]; then
        # shellcheck disable=SC2086 # the verb may be none, or scan and its operation
        candidates=$({
            "$quarry" ${verb% *} --help
            [[ $verb != *" "* ]] || "$quarry" $verb --help
        } 2>/dev/null | _quarry_section Options)
    elif [[ -z $verb ]]; then
        candidates=$("$quarry" --help 2>/dev/null | _quarry_section Subcommands)
    elif [[ $verb == describe ]]; then
        candidates=$("$quarry" list --json 2>/dev/null | sed -n 's/^{"name":"\([^"]*\)".*/\1/p')
    elif [[ $verb == scan && ${COMP_WORDS[COMP_CWORD - 1]} != -* ]]; then
        candidates=$operations
    else
        return
    fi
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$word")
    compopt +o default 2>/dev/null # do not fall back to file names
}

complete -o default -F _quarry quarry

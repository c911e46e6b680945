# SPDX-License-Identifier: MIT
# Completion of ddphost for bash. The program itself knows what a line may go on with.

_ddphost()
{
    local line
    COMPREPLY=()
    while IFS= read -r line; do
        case $line in
        *$'\t'*) COMPREPLY+=("${line%%$'\t'*}") ;;
        # Without candidates of ours, bash completes paths, with its own rules for quotes and tildes.
        files) compopt -o default ;;
        folders) compopt -o dirnames ;;
        esac
    done < <(ddphost complete --bash "${COMP_LINE:0:COMP_POINT}" "$COMP_WORDBREAKS" 2>/dev/null)
    # The value of a setting follows its key at once.
    [[ ${COMPREPLY[0]-} != *= ]] || compopt -o nospace
}
complete -F _ddphost ddphost

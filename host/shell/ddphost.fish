# SPDX-License-Identifier: MIT
# Completion of ddphost for fish. The program itself knows what a line may go on with.

function __ddphost_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    set -l lines (ddphost complete -- $words[2..] "$current" 2>/dev/null)
    # A path may be the value in a word such as --plugin=PATH.
    set -l option (string match -r -- '^--[^=]*=' $current)
    set -l path (string replace -r -- '^--[^=]*=' '' $current)
    switch "$lines[1]"
        case files
            printf '%s\n' "$option"(__fish_complete_path $path)
        case folders
            printf '%s\n' "$option"(__fish_complete_directories $path '')
        case '*'
            printf '%s\n' $lines
    end
end

complete -c ddphost -f -a '(__ddphost_complete)'

#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Finds calls in the library's sources that do not belong in a host's process: numbers that follow the host's locale,
# output, writing to files, and anything that ends the process or changes its state.
#
# usage: tools/forbidden.sh [FOLDER...]
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

folders=("$@")
[ ${#folders[@]} -gt 0 ] || folders=(src)

numbers='strto(d|f|ld|l|ll|ul|ull|imax|umax)|ato(f|i|l|ll)|sto(d|f|ld|i|l|ll|ul|ull)|(v?[fs]?w?scanf)|isspace|isalpha|isdigit|isalnum|toupper|tolower|towlower|towupper|iswspace'
output='(v?(f|d|s|sn|as)?printf)|f?put(s|c|char|wc|ws)|perror|c(out|err|log)|wc(out|err|log)|syslog'
writing='ofstream|fstream|fopen|freopen|fwrite|creat|write|pwrite|truncate|ftruncate|unlink|remove_all|rename|mkdir|rmdir|mkstemp|tmpfile|symlink|link|chmod|utime(s|nsat)?'
process='exit|_exit|_Exit|quick_exit|abort|terminate|raise|kill|system|popen|fork|vfork|exec(l|le|lp|v|ve|vp|vpe)|signal|sigaction|sigprocmask|pthread_sigmask|setlocale|chdir|fchdir|putenv|setenv|unsetenv|umask|alarm|setrlimit|atexit'

# Comments and string literals may name these functions. A member function is not a call of the C library: it follows
# ".", "->" or the name of its class. Only bare names and those after "std::" or "::" count.
found=$(
    git ls-files -- "${folders[@]}" | grep -E '\.(h|cpp)$' | while read -r file; do
        sed -E 's#//.*$##; s#"([^"\\]|\\.)*"#""#g' "$file" |
            grep -nE "(^|[^A-Za-z0-9_.:>])(std::|::)?($numbers|$output|$writing|$process)[[:space:]]*\(|std::w?(cout|cerr|clog|ofstream|fstream|locale::global)\b" |
            sed "s#^#$file:#" || true
    done
)
if [ -n "$found" ]; then
    printf '%s\n' "$found"
    fail "the library must not make the calls listed above"
fi

# shellcheck shell=bash
# What every script of this folder needs. Sourced, never run.

set -euo pipefail

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
export repository

# Prints the comment at the head of the running script, without the "# ".
print_help() {
    awk 'NR == 1 && /^#!/ { next } /^#/ { sub(/^# ?/, ""); print; next } { exit }' "$0"
}

fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

usage_error() {
    printf '%s: %s (see --help)\n' "$(basename "$0")" "$*" >&2
    exit 2
}

heading() {
    printf '\n== %s\n' "$*"
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail "this needs root: run it as root or install sudo"
    fi
}

# Our own C++ files below the given folders, one a line. Files that are new and not committed yet count too.
cpp_files() {
    git -C "$repository" ls-files --cached --others --exclude-standard -- "$@" | grep -E '\.(cpp|h|mm)$' |
        while IFS= read -r file; do
            if [ -f "$repository/$file" ]; then
                printf '%s\n' "$file"
            fi
        done
}

processors() {
    getconf _NPROCESSORS_ONLN
}

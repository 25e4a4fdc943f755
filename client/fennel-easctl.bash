# SPDX-License-Identifier: LGPL-2.1-or-later
# Completion for bash: the program knows its own words.

_fennel_easctl() {
    local word
    COMPREPLY=()
    while IFS= read -r word; do
        COMPREPLY+=("$word")
    done < <("$1" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _fennel_easctl fennel-easctl

# Bash completion of kyboardctl: the program itself knows what may follow.
_kyboardctl() {
    local IFS=$'\n'
    mapfile -t COMPREPLY < <(kyboardctl complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
    [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
}
complete -F _kyboardctl kyboardctl

#compdef kyboardctl
# Zsh completion of kyboardctl: the program itself knows what may follow.
_kyboardctl() {
    local -a candidates begun
    candidates=("${(@f)$(kyboardctl complete "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)}")
    # The value follows its key without a blank.
    begun=("${(@M)candidates:#*=}")
    candidates=("${(@)candidates:#*=}")
    compadd -S '' -a begun
    [[ -z $candidates ]] || compadd -a candidates
}
# Sourced, or found by its name.
if [[ ${funcstack[1]-} == _kyboardctl ]]; then
    _kyboardctl "$@"
else
    compdef _kyboardctl kyboardctl
fi

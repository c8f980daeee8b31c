#compdef kyboardctl
# Zsh completion of kyboardctl. "kyboardctl complete" prints the candidates.
_kyboardctl() {
    local -a candidates begun
    candidates=("${(@f)$(kyboardctl complete "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)}")
    # Add no blank after "KEY=".
    begun=("${(@M)candidates:#*=}")
    candidates=("${(@)candidates:#*=}")
    compadd -S '' -a begun
    [[ -z $candidates ]] || compadd -a candidates
}
# Zsh has autoloaded this file as the completion function; otherwise it is sourced.
if [[ ${funcstack[1]-} == _kyboardctl ]]; then
    _kyboardctl "$@"
else
    compdef _kyboardctl kyboardctl
fi

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
# If zsh has autoloaded this file, the file is the completion function: complete now. If the file is
# sourced, register the function.
if [[ ${funcstack[1]-} == _kyboardctl ]]; then
    _kyboardctl "$@"
else
    compdef _kyboardctl kyboardctl
fi

# Bash completion of kyboardctl. "kyboardctl complete" prints the candidates.
_kyboardctl() {
    local words=() word index
    # Bash splits KEY=VALUE into three words.
    for ((index = 1; index <= COMP_CWORD; ++index)); do
        word=${COMP_WORDS[index]}
        if [[ ${#words[@]} -gt 0 && ($word == '=' || ${words[-1]} == *=) ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
    done
    mapfile -t COMPREPLY < <(kyboardctl complete "${words[@]}" 2>/dev/null)
    [[ ${COMPREPLY[0]-} != *= ]] || compopt -o nospace 2>/dev/null
    # Bash completes only the value: remove "KEY=" from the candidates.
    word=${words[-1]}
    [[ $word != *=* ]] || COMPREPLY=("${COMPREPLY[@]#"${word%%=*}="}")
}
complete -F _kyboardctl kyboardctl

# Completion of vexqt for bash. The program itself knows what can stand where; this brings the words
# of the line to it as the program would see them, and its answer back as bash wants to have it.

# Gives the words of the line up to the cursor in the array `words`, without their quotes. Bash
# parts words at = and : too, which no shell does when it runs the command.
_vexqt_words() {
    local line=${COMP_LINE:0:COMP_POINT} word='' quote='' started='' i c
    words=()
    for ((i = 0; i < ${#line}; i++)); do
        c=${line:i:1}
        if [[ $quote == "'" ]]; then
            if [[ $c == "'" ]]; then quote=''; else word+=$c; fi
        elif [[ $c == '\' ]] && ((i + 1 < ${#line})); then
            i=$((i + 1))
            word+=${line:i:1}
            started=1
        elif [[ $quote == '"' ]]; then
            if [[ $c == '"' ]]; then quote=''; else word+=$c; fi
        elif [[ $c == "'" || $c == '"' ]]; then
            quote=$c
            started=1
        elif [[ $c == [$' \t'] ]]; then
            [[ $started ]] && words+=("$word")
            word='' started=''
        elif [[ $c == [';|&'] ]]; then
            words=() word='' started=''
        else
            [[ $c == '~' && ! $started ]] && c=$HOME
            word+=$c
            started=1
        fi
    done
    words+=("$word")
    open_quote=$quote
}

_vexqt() {
    local -a words=()
    local open_quote='' candidate kept='' current files=''
    _vexqt_words
    current=${words[${#words[@]} - 1]}
    COMPREPLY=()

    # Bash replaces only what stands behind the last of the characters that part its words.
    if [[ ! $open_quote ]]; then
        [[ $COMP_WORDBREAKS == *=* && $current == *=* ]] && kept=${current%"${current##*=}"}
        [[ $COMP_WORDBREAKS == *:* && ${current#"$kept"} == *:* ]] &&
            kept=${current%"${current##*:}"}
    fi

    while IFS=$'\t' read -r candidate _; do
        if [[ $candidate == :files ]]; then
            files=1
            continue
        fi
        # What goes on, goes on at once.
        [[ $candidate == *[.=[] ]] && compopt -o nospace 2>/dev/null
        candidate=${candidate#"$kept"}
        [[ $open_quote ]] || printf -v candidate %q "$candidate"
        COMPREPLY+=("$candidate")
    done < <("${words[0]}" __complete "${words[@]:1}" 2>/dev/null)

    if [[ $files ]]; then
        compopt -o filenames 2>/dev/null
        local name
        while IFS= read -r name; do
            COMPREPLY+=("$name")
        done < <(compgen -f -- "${current#"$kept"}")
    fi
}

complete -F _vexqt vexqt

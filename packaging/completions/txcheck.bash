# bash completion of txcheck
_txcheck() {
    local cur prev words cword
    _init_completion -n : || return
    local kinds="empty duplicate blank orphan missing corrupt side"
    case $prev in
    --log | --home) _filedir -d; return ;;
    --undo | --restore | --known | --write-known | --report) _filedir; return ;;
    -e | --entry | --database | --change-key | --rename | --solve | --explain) return ;;
    --solve-all)
        [[ $cur == *:* ]] || COMPREPLY=($(compgen -S :1 -W "$kinds" -- "$cur"))
        __ltrim_colon_completions "$cur"
        return
        ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "--database --home --all --entry --explain --known --write-known --solve --solve-all --preen --rename --change-key --yes --save --plan --undo
            --no-undo --undo-list --restore --log --no-lock --report --json --quiet --progress --no-progress --version --help" -- "$cur"))
    else
        _filedir -d
    fi
} && complete -F _txcheck txcheck

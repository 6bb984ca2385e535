# bash completion of txcheck
_txcheck() {
    local cur prev words cword
    _init_completion -n : || return
    local solutions="empty:1 duplicate:1 duplicate:2 blank:1 orphan:1 orphan:2 missing:1 corrupt:1 side:1"
    local back
    for ((back = 1; back < cword && back <= 4; ++back)); do # nobody can tell how a key goes on
        case $back${words[cword - back]} in
        [12]--rename | [1-4]--change-key) return ;;
        esac
    done
    case $prev in
    --log | --home) _filedir -d; return ;;
    --undo | --restore | --known | --write-known | --report) _filedir; return ;;
    -e | --entry | --database | --solve | --explain) return ;;
    --solve-all)
        COMPREPLY=($(compgen -W "$solutions" -- "$cur"))
        __ltrim_colon_completions "$cur"
        return
        ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "--database --every --home --all --entry --explain --known --write-known --solve --solve-all --preen --rename --change-key --yes --save --plan --undo
            --no-undo --undo-list --restore --forget-interrupted --log --no-lock --report --json --quiet --progress --no-progress --version --help" -- "$cur"))
    else
        _filedir -d
    fi
} && complete -F _txcheck txcheck

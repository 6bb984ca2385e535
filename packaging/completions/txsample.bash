# bash completion of txsample
_txsample() {
    local cur prev words cword
    _init_completion || return
    local damages="none all duplicates experiment-duplicates blank-keys orphans empty-files corrupt-files truncated
        side-files missing-directories case-variants odd-bytes"
    case $prev in
    --home) _filedir -d; return ;;
    --damage)
        local before=
        [[ $cur != *,* ]] || before=${cur%,*},
        COMPREPLY=($(compgen -P "$before" -W "$damages" -- "${cur##*,}"))
        return
        ;;
    --keys) COMPREPLY=($(compgen -W "ordered shuffled prefixed" -- "$cur")); return ;;
    --files | --entries | --types | --experiments | --records | --fields | --seed | --name) return ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "--files --entries --types --experiments --records --fields --keys --seed --damage --home
            --name --version --help" -- "$cur"))
    else
        _filedir -d
    fi
} && complete -F _txsample txsample

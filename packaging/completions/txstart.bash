# bash completion of txstart
_txstart() {
    local cur prev words cword
    _init_completion || return
    case $prev in
    --home) _filedir -d; return ;;
    --add | --database) return ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "--home --add --yes --database --inspect --version --help" -- "$cur"))
    else
        _filedir -d
    fi
} && complete -F _txstart txstart

# bash completion for lumivale: its commands, each command's options and their values.

_lumivale() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    local shelves="ids bills tickets chats code shopping maps other"

    # The command is the first word that is neither an option nor the folder of --data; the
    # words after it that are not options are its arguments.
    local i command="" arguments=0
    for ((i = 1; i < COMP_CWORD; i++)); do
        local word=${COMP_WORDS[i]}
        if [[ -z $command ]]; then
            case $word in
                --data) ((i++)) ;;
                -*) ;;
                *) command=$word ;;
            esac
        else
            case $word in
                --lang | --place | --layout | --scope | --days | --to) ((i++)) ;;
                -*) ;;
                *) ((arguments++)) ;;
            esac
        fi
    done

    case $prev in
        --data | --to) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -d -- "$cur")); return ;;
        --place) COMPREPLY=($(compgen -W "overview all recent private locked $shelves" -- "$cur")); return ;;
        --layout) COMPREPLY=($(compgen -W "shelf month" -- "$cur")); return ;;
        --scope) COMPREPLY=($(compgen -W "loose everything" -- "$cur")); return ;;
        --days) COMPREPLY=($(compgen -W "30 90 182 365" -- "$cur")); return ;;
        --lang) return ;;
    esac

    if [[ -z $command ]]; then
        COMPREPLY=($(compgen -W "clear discard fixtures folders list lock locked read restore scan
            search selfcheck shelf tidy trash undo --data --help --version" -- "$cur"))
        return
    fi

    local options="" values=""
    case $command in
        read) options="--json --lang"; values=files ;;
        fixtures | selfcheck) ((arguments == 0)) && values=folders ;;
        scan | locked) options="--json" ;;
        list) options="--json --place" ;;
        search) options="--json" ;;
        shelf)
            ((arguments == 0)) && values=files
            ((arguments == 1)) && values="$shelves auto"
            ;;
        folders)
            options="--json"
            ((arguments == 0)) && values="add remove on off archive"
            ((arguments == 1)) && values=folders
            ;;
        tidy) options="--layout --rename --scope --include-private --dry-run --yes --json" ;;
        clear) options="--days --scope --include-private --dry-run --yes --json" ;;
        trash | lock) options="--yes"; values=files ;;
        undo) options="--list --json" ;;
        restore) options="--to" ;;
        discard) options="--yes" ;;
    esac

    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    elif [[ $values == files ]]; then
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -f -- "$cur"))
    elif [[ $values == folders ]]; then
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -d -- "$cur"))
    elif [[ -n $values ]]; then
        COMPREPLY=($(compgen -W "$values" -- "$cur"))
    fi
}

complete -F _lumivale lumivale

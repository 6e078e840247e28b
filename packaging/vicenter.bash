# Completion of vicenter's commands, options and files for bash.
_vicenter() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command= set= i
    local commands="account-set check delete doctor drivers export generate history import list log new print rename
        replace restore save search show sql window"
    local options="--account-set --ask-password --connect --excel --help --json --no --password-env --password-file
        --user --version --yes"
    case $before in
        --account-set | --password-file)
            COMPREPLY=($(compgen -f -- "$word"))
            return
            ;;
        --connect | --password-env | --user | --excel)
            return
            ;;
    esac
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in -*) continue ;; esac
        if [ -z "$command" ]; then
            case " ${commands//$'\n'/ } " in *" ${COMP_WORDS[i]} "*) command=${COMP_WORDS[i]} ;; esac
        elif [ "$command" = account-set ] && [ -z "$set" ]; then
            set=${COMP_WORDS[i]}
        fi
    done
    if [ -z "$command" ]; then
        COMPREPLY=($(compgen -W "$commands $options" -- "$word"))
    elif [ "$command" = account-set ] && [ -z "$set" ]; then
        COMPREPLY=($(compgen -W "backup copy new restore upgrade verify $options" -- "$word"))
    else
        case $command in
            account-set) [ "$set" != new ] || options="--demo --dry-run --vouchers $options" ;;
            check) options="--all $options" ;;
            export) options="--all --empty $options" ;;
            generate)
                options="--dry-run --fields --from --group --include-system --name --period --to --without --year
                    $options"
                ;;
            history) options="--deleted --keep-days --keep-versions --version-id $options" ;;
            import) options="--dry-run --marked-copy --report --tidy $options" ;;
            log) options="--from --kind --template --to $options" ;;
            print) options="--number $options" ;;
            replace) options="--column --dry-run --from --standard --to --undo $options" ;;
            search) options="--account --amount --item --text $options" ;;
            restore) options="--as --version-id $options" ;;
            window) options="--offscreen-session $options" ;;
        esac
        COMPREPLY=($(compgen -W "$options" -- "$word") $(compgen -f -- "$word"))
    fi
}
complete -o filenames -F _vicenter vicenter

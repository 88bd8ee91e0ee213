# bash completion for sensorctl

_sensorctl() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands="modules list get set reset run watch scheme daynight edge trace decode simulate ui"
    local target="--module --config --product --board --port --line --simulated --detail --video-system --resolution --root --schemes --tuning --gpio --trace --fault
        --baud-pace --simulated-restart"
    local common="--help --json --verbose"
    COMPREPLY=()

    # "=" breaks words: the value behind it is the user's to type.
    [[ $current == "=" || $previous == "=" ]] && return

    case $previous in
    -m | --module)
        local module=modules
        [[ ${COMP_WORDS[1]} == simulate ]] && module="modules --json"
        mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" $module 2>/dev/null |
            sed -n 's/^ *\([0-9][0-9]*\) .*/\1/p; s/^{"id":\([0-9]*\),.*"simulated":".*/\1/p')" -- "$current")
        return
        ;;
    -p | --port)
        mapfile -t COMPREPLY < <(compgen -f -- "${current:-/dev/tty}")
        return
        ;;
    --root | --config)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
        ;;
    --trace | --link | --state | --plot | --tuning)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    --video-system)
        mapfile -t COMPREPLY < <(compgen -W "pal ntsc" -- "$current")
        return
        ;;
    --gpio)
        mapfile -t COMPREPLY < <(compgen -W "chip memory" -- "$current")
        return
        ;;
    --print)
        mapfile -t COMPREPLY < <(compgen -W "style gui common language" -- "$current")
        return
        ;;
    --ambient)
        mapfile -t COMPREPLY < <(compgen -W "dark light" -- "$current")
        return
        ;;
    --fault)
        mapfile -t COMPREPLY < <(compgen -W "silence late truncate split merge noise-before noise-between flip
            duplicate echo refuse checksum short-write port-gone reboot" -- "$current")
        return
        ;;
    --line | --detail | --resolution | --baud-pace | --baud | --for | --wait | --product | --board | --language)
        return
        ;;
    esac

    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "$commands --help --version" -- "$current")
        return
    fi

    local options=$common
    case ${COMP_WORDS[1]} in
    list) options+=" $target --no-bring-up" ;;
    get) options+=" $target" ;;
    set) options+=" $target --flush" ;;
    reset) options+=" $target --last" ;;
    run) options+=" $target --keep-going" ;;
    watch) options+=" $target --for" ;;
    daynight) options+=" $target --wait --ambient --day --light --hours --plot" ;;
    scheme) options+=" $target --day --light --hours --plot" ;;
    trace) options+=" $target --for" ;;
    edge) options+=" --plot" ;;
    decode) options+=" --module" ;;
    simulate) options+=" --module --link --baud --fault --state" ;;
    ui) options+=" --config --product --board --language --explain --print" ;;
    esac

    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        return
    fi
    case ${COMP_WORDS[1]} in
    daynight) mapfile -t COMPREPLY < <(compgen -W "auto day night clock module" -- "$current") ;;
    scheme) mapfile -t COMPREPLY < <(compgen -W "auto manual choose span enable disable copy" -- "$current") ;;
    get | set | trace)
        local index module=
        for ((index = 2; index < COMP_CWORD; ++index)); do
            [[ ${COMP_WORDS[index]} == -m || ${COMP_WORDS[index]} == --module ]] && module=${COMP_WORDS[index + 1]}
        done
        [[ -n $module ]] || return
        local suffix=
        [[ ${COMP_WORDS[1]} == get ]] || suffix='='
        mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" list --module "$module" --no-bring-up 2>/dev/null |
            awk -v suffix="$suffix" '{ print $2 ($3 == "command" ? "" : suffix) }')" -- "$current")
        [[ ${COMPREPLY[0]} == *= ]] && compopt -o nospace
        ;;
    esac
}

complete -F _sensorctl sensorctl

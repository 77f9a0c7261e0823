# Completion of vorranoctl for bash.

# The paths and nodes that the tool lists.
_vorranoctl_ports() {
    vorranoctl list 2>/dev/null | awk 'NR > 1 { print $1; if ($2 != $1) print $2 }'
}

_vorranoctl() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    local verbs="list get set wifi reset update" devices="--port --all --json --help"
    local types=$'Open\nWEP-128\nWPA1\nWPA\\ mixed\nWPA2\nWEP-64'
    local verb="" item="" word i
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        case $word in
        -p | --port | --ssid | --security | --password-file) ((i++)) ;;
        -*) ;;
        *) if [ -z "$verb" ]; then verb=$word; elif [ -z "$item" ]; then item=$word; fi ;;
        esac
    done

    COMPREPLY=()
    case $prev in
    -p | --port)
        mapfile -t COMPREPLY < <(compgen -W "$(_vorranoctl_ports)" -- "$cur")
        return
        ;;
    --password-file)
        mapfile -t COMPREPLY < <(compgen -f -- "$cur")
        return
        ;;
    --security)
        local IFS=$'\n'
        mapfile -t COMPREPLY < <(compgen -W "$types" -- "$cur")
        return
        ;;
    --ssid) return ;;
    esac

    local words
    case $verb in
    "") words="$verbs --help --version" ;;
    list) words="--json --help" ;;
    get) words="$devices" ;;
    set) words="$devices --password-file" ;;
    wifi) words="$devices --ssid --security --password-file" ;;
    reset) words="$devices" ;;
    update) words="$devices --force" ;;
    esac
    if [ -n "$verb" ] && [ -z "$item" ]; then
        case $verb in
        get) words="power adc connection mac firmware wifi-firmware ssid password throttle unit $words" ;;
        set) words="ssid security password wep-key throttle unit $words" ;;
        reset) words="device modem $words" ;;
        update) [[ $cur == -* ]] || mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
        esac
    elif [ "$verb $item" = "set unit" ]; then
        words="Fahrenheit Celsius $words"
    elif [ "$verb $item" = "set security" ]; then
        local IFS=$'\n'
        words="$types"$'\n'"${words// /$'\n'}"
    fi
    local found
    mapfile -t found < <(compgen -W "$words" -- "$cur")
    COMPREPLY+=("${found[@]}")
}

complete -F _vorranoctl vorranoctl

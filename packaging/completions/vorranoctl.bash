# Completion of vorranoctl for bash.

# The paths and nodes that the tool lists.
_vorranoctl_ports() {
    vorranoctl list 2>/dev/null | awk 'NR > 1 { print $1; if ($2 != $1) print $2 }'
}

# Offers the lines of standard input that begin with the current word. They stand in the command line as the shell needs
# them: a blank after a backslash.
_vorranoctl_offer() {
    local line
    while IFS= read -r line; do
        printf -v line %q "$line"
        if [[ $line == "$cur"* ]]; then COMPREPLY+=("$line"); fi
    done
}

# The shell completes files by itself where nothing is offered.
_vorranoctl_offer_files() {
    compopt -o default 2>/dev/null
}

_vorranoctl() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    local verbs="list get set wifi reset update" devices="--port --all --json --help"
    local types=$'Open\nWEP-128\nWPA1\nWPA mixed\nWPA2\nWEP-64'
    local verb="" item="" word i
    # In "--port=PATH" the sign is a word of its own.
    if [ "$cur" = = ]; then cur=""; fi
    if [ "$prev" = = ]; then prev=${COMP_WORDS[COMP_CWORD - 2]}; fi
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        case $word in
        -p | --port | --ssid | --security | --password-file)
            ((i++))
            if [ "${COMP_WORDS[i]:-}" = = ]; then ((i++)); fi
            ;;
        -*) ;;
        *) if [ -z "$verb" ]; then verb=$word; elif [ -z "$item" ]; then item=$word; fi ;;
        esac
    done

    COMPREPLY=()
    case $prev in
    -p | --port)
        _vorranoctl_offer < <(_vorranoctl_ports)
        return
        ;;
    --password-file)
        _vorranoctl_offer_files
        return
        ;;
    --security)
        _vorranoctl_offer <<<"$types"
        return
        ;;
    --ssid) return ;;
    esac

    local words=""
    case $verb in
    "") words="$verbs --help --version" ;;
    list) words="--json --help" ;;
    get) words="$devices" ;;
    set) words="$devices --password-file" ;;
    wifi) words="$devices --ssid --security --password-file" ;;
    reset) words="$devices" ;;
    update) words="$devices --force" ;;
    esac
    case "$verb $item" in
    "get ") words="power adc connection mac firmware wifi-firmware ssid password throttle unit $words" ;;
    "set ") words="ssid security password wep-key throttle unit $words" ;;
    "reset ") words="device modem $words" ;;
    "update ")
        if [[ $cur != -* ]]; then
            _vorranoctl_offer_files
            return
        fi
        ;;
    "set unit") words="Fahrenheit Celsius $words" ;;
    "set security") _vorranoctl_offer <<<"$types" ;;
    esac
    _vorranoctl_offer <<<"${words// /$'\n'}"
}

complete -F _vorranoctl vorranoctl

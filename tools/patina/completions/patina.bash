# Completion of patina's command line for bash.

# A word of the command line as the shell reads it, but that nothing in it is run: variables and other people's
# home directories stay as they are written.
_patina_unquoted() {
    local word=$1 quote='' text='' letter i
    if [[ $word == '~' || $word == '~/'* ]]; then
        text=$HOME
        word=${word:1}
    fi
    for ((i = 0; i < ${#word}; ++i)); do
        letter=${word:i:1}
        case $quote$letter in
            "''" | '""') quote='' ;;
            "'" | '"') quote=$letter ;;
            \\)
                ((++i))
                text+=${word:i:1} ;;
            '"\')
                [[ ${word:i + 1:1} == [\"\\\$\`] ]] && ((++i))
                text+=${word:i:1} ;;
            *) text+=$letter ;;
        esac
    done
    printf '%s\n' "$text"
}

_patina_run() {
    "$(_patina_unquoted "${COMP_WORDS[0]}")" "$@" 2>/dev/null
}

# The checks that plug-ins go through.
_patina_checks() {
    local name rest
    while read -r name rest; do
        printf '%s\n' "$name"
    done < <(_patina_run validate --list)
}

# The node types that the command knows with the plug-ins that the line names.
_patina_node_types() {
    local -a plugins=()
    local i
    for ((i = 1; i < COMP_CWORD - 1; ++i)); do
        if [[ ${COMP_WORDS[i]} == --plugin ]]; then
            plugins+=(--plugin "$(_patina_unquoted "${COMP_WORDS[i + 1]}")")
        fi
    done
    # without a plug-in that cannot be loaded, or is still being typed, there are the installed ones
    _patina_run nodes --names "${plugins[@]}" || _patina_run nodes --names
}

# Files whose names match a pattern, and directories.
_patina_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -X "!$1" -- "$word"; compgen -d -- "$word")
}

_patina_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$word")
}

_patina() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands='export check nodes describe graph preview validate'
    COMPREPLY=()

    if ((COMP_CWORD == 1)); then
        _patina_words "$commands --help --version"
        return
    fi

    local command=${COMP_WORDS[1]}
    case "$command $previous" in
        'export -o' | 'export --output')
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -d -- "$word")
            return ;;
        'preview -o' | 'preview --output') _patina_files '*.png'; return ;;
        'preview --mesh')
            _patina_files '*.obj'
            mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W 'sphere plane cube' -- "$word")
            return ;;
        'preview --textures')
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -d -- "$word")
            return ;;
        'preview --background') _patina_words 'transparent'; return ;;
        'preview --size' | 'preview --texture' | 'preview --set' | 'preview --animate') return ;;
        'preview --time' | 'preview --frames' | 'preview --node' | 'preview --samples') return ;;
        'graph -o' | 'graph --output') _patina_files '*'; return ;;
        *' --plugin') _patina_files '*.so'; return ;;
        'export --framework') _patina_words 'patina none'; return ;;
        'export --target') _patina_words 'cg hlsl glsl essl msl spirv'; return ;;
        'graph --format') _patina_words 'dot svg'; return ;;
        'validate --only') _patina_words "$(_patina_checks)"; return ;;
        'export -j' | 'export --jobs' | 'validate --timeout') return ;;
    esac

    if [[ $word == -* ]]; then
        case $command in
            export) _patina_words '-o --output --plugin -j --jobs -MD --depfile --target --framework --annotate --json -q --quiet --help' ;;
            check) _patina_words '--plugin --werror -q --quiet --help' ;;
            nodes) _patina_words '--json --names --plugin --help' ;;
            describe) _patina_words '--json --plugin --help' ;;
            graph) _patina_words '--shader --format -o --output --plugin --help' ;;
            preview)
                _patina_words '-o --output --size --mesh --texture --textures --set --animate --time --frames
                    --node --contact-sheet --background --samples --plugin -q --quiet --help' ;;
            validate) _patina_words '--list --only --json --timeout --help' ;;
        esac
        return
    fi

    case $command in
        export | check | graph | preview) _patina_files '*.xml' ;;
        describe) _patina_words "$(_patina_node_types)" ;;
        validate) _patina_files '*.so' ;;
    esac
}

complete -F _patina patina

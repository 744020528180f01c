# Completion of britlock's options, as the program itself lists them.
_britlock() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
        --machine | --state | --make-sample)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$word")
            return
            ;;
        --screenshot)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return
            ;;
        --page)
            mapfile -t COMPREPLY < <(compgen -W '1 2 3 4 5 6 7 8 9' -- "$word")
            return
            ;;
    esac
    local options
    options=$(britlock --help 2>&1 | grep -oE '^ +--[a-z-]+')
    mapfile -t COMPREPLY < <(compgen -W "$options /icon /uninstall" -- "$word")
}
complete -F _britlock britlock

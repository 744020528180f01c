# Completion of britlock's options, as the program itself lists them.
_britlock() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} verb='' words=''
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
    case ${COMP_WORDS[1]} in
        apply | show | save) [ "$COMP_CWORD" = 1 ] || verb=${COMP_WORDS[1]} ;;
    esac
    [ -n "$verb" ] || words='/icon /uninstall'
    [ "$COMP_CWORD" != 1 ] || words+=' apply show save'
    words+=" $(britlock $verb --help 2>&1 | grep -oE '^ +--[a-z-]+(, --[a-z-]+)?' | tr -d ,)"
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    if [ "$verb" != show ] && [[ $word != -* ]]; then
        compopt -o filenames
        mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -X '!*.[bB][rR][lL]' -- "$word"; compgen -d -- "$word")
    fi
}
complete -F _britlock britlock

# A person's eyes and hands at the screen of $DISPLAY, for the scripts that walk through real windows. Such a script names itself in
# `walk`, and in `pictures` the folder for the pictures of its way, or none.

picture() { [ -z "$pictures" ] || import -window "${2:-$(xdotool getactivewindow)}" "$pictures/$1.png"; }
fail() {
    echo "$walk: $*" >&2
    picture failed root
    exit 1
}
titled() { xdotool search --onlyvisible --name "^${1//\?/[?]}\$" 2>/dev/null | tail -n 1 || true; }
# Gives the keyboard to the window of this title as soon as it is there.
window() {
    local id
    for _ in $(seq 300); do
        id=$(titled "$1")
        if [ -n "$id" ]; then
            xdotool windowactivate --sync "$id" 2>/dev/null || true
            sleep 0.4
            return
        fi
        sleep 0.1
    done
    fail "no window '$1', but: $(xdotool search --onlyvisible --name . getwindowname %@ 2>/dev/null | paste -sd '|')"
}
gone() {
    for _ in $(seq 300); do [ -n "$(titled "$1")" ] || return 0; sleep 0.1; done
    fail "the window '$1' stays"
}
keys() { xdotool key --delay 60 "$@"; sleep 0.3; }
words() { xdotool type --delay 40 "$1"; }
# A click inside the active window, in its client area.
click() { xdotool mousemove --window "$(xdotool getactivewindow)" "$1" "$2" click 1; sleep 0.3; }

# The first start, on to the main window: the titles of its three boxes.
set_password() {
    window "$1"
    keys Return
    window "$2"
    picture set-password
    words secret
    keys Tab
    words secret
    keys Return
    window "$3"
    keys Return
    window 'Brightlock Suite'
    picture start
}

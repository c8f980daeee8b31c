# shellcheck shell=bash
# Functions for the scripts that change the simulated board as a person changes a real one.

board=${STRANDEL_BOARD:-/run/strandel-board}

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# set_value FILE VALUE: replaces the file atomically, so that readers never see a partial value.
set_value() {
    mkdir -p "$board/${1%/*}"
    local fresh=$board/${1%/*}/.${1##*/}.$$
    echo "$2" >"$fresh"
    mv "$fresh" "$board/$1"
}

# check_number VALUE LOWEST HIGHEST NAME
check_number() {
    if ! [[ $1 =~ ^-?[0-9]{1,7}$ ]] || [ "$1" -lt "$2" ] || [ "$1" -gt "$3" ]; then
        fail "the $4 is a number from $2 to $3"
    fi
}

has_charger() {
    [ "$(cat "$board/charger/present" 2>/dev/null)" = 1 ]
}

# set_battery PERCENT: sets the charge meter's values, depending on the charger. The meter reports a
# negative charge while the battery is being charged; the flag says that charging has not ended.
set_battery() {
    local charge=$1 flag=0
    if has_charger && [ "$1" -lt 100 ]; then
        charge=$((-$1))
        flag=1
    fi
    set_value battery/charge "$charge"
    set_value battery/flag "$flag"
    set_value battery/voltage $((6000 + 20 * $1))
}

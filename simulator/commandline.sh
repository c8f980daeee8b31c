# shellcheck shell=bash
# The command line of the virtual instrument, for the two commands that start it: ./run in this
# tree, and kyboard-instrument of the package. The two commands differ in their names, in where the
# programs are, and in what they prepare. A handle is a file that identifies a running instrument.

# Sets "command" to the command to run in the instrument, "instrument_options" to the options of a new
# instrument, "own_handle" to the FILE of --handle, "panel" if the command is the front panel, and
# "picture" to the file for a picture of it. Exits after --help and on an error.
# usage: parse_command_line NAME DOCUMENTS [ARGUMENT...]
parse_command_line() {
    # The scripts of the instrument also print the name of the command and the directory of the documents.
    export INSTRUMENT_COMMAND=$1 INSTRUMENT_DOCUMENTS=$2
    shift 2
    instrument_options=()
    own_handle=
    panel='' picture=''
    local size=''
    while [ $# -gt 0 ]; do
        case $1 in
        -h | --help)
            show_usage
            exit
            ;;
        --speed)
            [[ ${2:-} =~ ^[1-9][0-9]?$ && $2 -le 60 ]] \
                || refuse "--speed: '${2:-}' is not a whole number from 1 to 60"
            instrument_options=(--speed "$2")
            shift 2
            ;;
        --handle)
            [[ ${2:-} == /* ]] || refuse "--handle: '${2:-}' is not an absolute path"
            own_handle=$2
            shift 2
            ;;
        --panel)
            panel=yes
            shift
            ;;
        --picture | --size)
            [ $# -gt 1 ] || refuse "$1 needs a value"
            panel=yes
            case $1 in
            --size) size=$2 ;;
            # FILE is relative to the caller's directory. ./run stores this directory in "from".
            --picture) picture=$(cd "${from:-.}" && realpath "$2") || exit 2 ;;
            esac
            shift 2
            ;;
        --)
            shift
            break
            ;;
        -*) refuse "there is no option '$1'" ;;
        *) break ;;
        esac
    done
    command=("$@")
    [ -n "$panel" ] || return 0
    [ $# -eq 0 ] || [ -n "$picture" ] || refuse "the panel is a command of its own"
    command=(panel ${picture:+--picture -} ${size:+--size "$size"})
    [ $# -eq 0 ] || command+=(-- "$@")
}

refuse() {
    echo "$INSTRUMENT_COMMAND: $*" >&2
    show_usage >&2
    exit 2
}

show_usage() {
    local name=$INSTRUMENT_COMMAND
    cat <<EOT
Starts the virtual instrument in the foreground, or runs a command inside it:
  $name                 starts the instrument, which ends at Ctrl-C
  $name -- COMMAND...   runs the command in the running instrument, or in a new one that ends after
  ${name//?/ }                 the command; exits with the command's status
  $name --speed N ...   starts an instrument whose time passes N times faster, 1 to 60
  $name --handle FILE ...
  ${name//?/ }                 uses or starts the instrument of FILE, beside other running instruments
  $name --panel         shows the front panel, of the running instrument or of a new one, in a window
  $name --picture FILE [-- COMMAND...]
  ${name//?/ }                 writes a picture of the panel as PNG, after the command; needs no display
  $name --size WxH      the size of the panel or of its picture in pixels
  $name --help          prints this text
$INSTRUMENT_DOCUMENTS/virtual-instrument.md describes the instrument.
EOT
}

# Replaces this process by the instrument, or by the command in it. Joins the running instrument whose
# handle is the FILE of --handle, or HANDLE without that option. If none runs, starts an instrument. The
# new instrument writes its handle if there is no command, or if --handle or --panel is given.
# usage: start_instrument HANDLE WORLD_OPTION...
start_instrument() {
    local handle=${own_handle:-$1} here
    here=$(dirname "${BASH_SOURCE[0]}")
    shift
    if [ "$(cat "/proc/$(cat "$handle" 2>/dev/null)/comm" 2>/dev/null)" = unshare ]; then
        [ ${#instrument_options[@]} -eq 0 ] \
            || refuse "--speed belongs to the start, and an instrument is running already"
        if [ ${#command[@]} -eq 0 ]; then
            echo "An instrument is running already; $INSTRUMENT_COMMAND -- COMMAND runs a command in it" >&2
            exit 1
        fi
        set -- "$@" --display --join "$handle" -- "${command[@]}"
    else
        # Write the handle, so that other commands can join the instrument.
        if [ ${#command[@]} -eq 0 ] || [ -n "$own_handle$panel" ]; then
            set -- "$@" --handle "$handle"
        fi
        set -- "$@" --display -- "$here/instrument" "${instrument_options[@]}" "${command[@]}"
    fi
    [ -n "$picture" ] || exec "$here/world" "$@"
    # Write the file outside of the world, which hides many of the machine's directories.
    "$here/world" "$@" >"$picture.part" || { rm -f "$picture.part" && exit 1; }
    mv "$picture.part" "$picture"
}

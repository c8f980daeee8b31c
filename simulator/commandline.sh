# shellcheck shell=bash
# The command line of the virtual instrument, for the two commands that start it: ./run in this tree,
# and kyboard-instrument of the package. They differ in their names, in where the programs are, and in
# what is to be done before.

# Sets "command" to the command that is to run in the instrument. Ends after --help, or at an unknown
# option.
# usage: parse_command_line NAME DOCUMENTS [ARGUMENT...]
parse_command_line() {
    # The instrument's own texts name them, too.
    export INSTRUMENT_COMMAND=$1 INSTRUMENT_DOCUMENTS=$2
    shift 2
    case ${1:-} in
    -h | --help)
        show_usage
        exit
        ;;
    --) shift ;;
    -*)
        echo "$INSTRUMENT_COMMAND: there is no option '$1'" >&2
        show_usage >&2
        exit 2
        ;;
    esac
    command=("$@")
}

show_usage() {
    local name=$INSTRUMENT_COMMAND
    cat <<EOT
Starts the virtual instrument in the foreground, or runs a command inside it:
  $name                 the instrument, until Ctrl-C
  $name -- COMMAND...   the command, in the running instrument or in one of its own; it ends with
  ${name//?/ }                 $name, and $name with its status
  $name --help          this text
$INSTRUMENT_DOCUMENTS/virtual-instrument.md tells what is in it.
EOT
}

# Becomes the instrument, or the command in it. A running instrument is found by its handle.
# usage: start_instrument HANDLE WORLD_OPTION...
start_instrument() {
    local handle=$1 here
    here=$(dirname "${BASH_SOURCE[0]}")
    shift
    if [ "$(cat "/proc/$(cat "$handle" 2>/dev/null)/comm" 2>/dev/null)" = unshare ]; then
        if [ ${#command[@]} -gt 0 ]; then
            exec "$here/world" "$@" --display --join "$handle" -- "${command[@]}"
        fi
        echo "An instrument is running already; $INSTRUMENT_COMMAND -- COMMAND runs a command in it" >&2
        exit 1
    fi
    [ ${#command[@]} -gt 0 ] || set -- "$@" --handle "$handle"
    exec "$here/world" "$@" --display -- "$here/instrument" "${command[@]}"
}

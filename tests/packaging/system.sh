# shellcheck shell=bash
# For the checks that need a system of nothing but Debian's packages.

# Makes a minimal system with these packages as DIRECTORY/system.tar, which is kept as a cache.
# usage: make_system DIRECTORY [PACKAGE...]
make_system() {
    local directory=$1 repositories
    shift
    [ "$(cat "$directory/complete" 2>/dev/null)" != "system of $*" ] || return 0
    mkdir -p "$directory"
    rm -f "$directory/complete"
    repositories=$("${BASH_SOURCE[0]%/*}/../../tools/repositories")
    mmdebstrap --quiet --variant=minbase --include="$(IFS=,; echo "$*")" \
        '' "$directory/system.tar" - <<<"$repositories"
    echo "system of $*" >"$directory/complete"
}

# Unpacks a fresh system as DIRECTORY/root.
# usage: unpack_system DIRECTORY
unpack_system() {
    rm -rf "$1/root"
    mkdir "$1/root"
    tar --extract --file "$1/system.tar" --directory "$1/root"
}

# Boots the unpacked system without a network, until it powers off or the time is over. The
# container makes nothing read-only, so that only the services' own restrictions apply.
# usage: boot_system DIRECTORY SECONDS
boot_system() {
    SYSTEMD_NSPAWN_API_VFS_WRITABLE=yes timeout --kill-after=10 "$2" \
        systemd-nspawn --quiet --directory="$1/root" --register=no --keep-unit \
        --private-network --console=pipe --boot </dev/null >"$1/console" 2>&1 \
        || echo "the container ended with status $?" >&2
}

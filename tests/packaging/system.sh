# shellcheck shell=bash
# For the checks that need a system of nothing but Debian's packages. "fail" is the caller's.

# Where apt of this machine gets Debian's packages from.
repositories() {
    # What is not to be expanded is apt's own.
    # shellcheck disable=SC2016
    apt-get indextargets 'Created-By: Packages' 'Origin: Debian' 'Label: Debian' \
        --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' | sort -u
}

# A minimal system with these packages as DIRECTORY/system.tar, which stays for the next time.
# usage: make_system DIRECTORY [PACKAGE...]
make_system() {
    local directory=$1
    shift
    [ "$(cat "$directory/complete" 2>/dev/null)" != "system of $*" ] || return 0
    mkdir -p "$directory"
    rm -f "$directory/complete"
    [ -n "$(repositories)" ] || fail "apt is configured without Debian"
    repositories | mmdebstrap --quiet --variant=minbase --include="$(IFS=,; echo "$*")" \
        '' "$directory/system.tar" -
    echo "system of $*" >"$directory/complete"
}

# Unpacks it afresh as DIRECTORY/root.
# usage: unpack_system DIRECTORY
unpack_system() {
    rm -rf "$1/root"
    mkdir "$1/root"
    tar --extract --file "$1/system.tar" --directory "$1/root"
}

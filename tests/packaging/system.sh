# shellcheck shell=bash
# For the checks that need a system of nothing but Debian's packages. "fail" is the caller's.

# Where apt of this machine gets Debian's packages from.
repositories() {
    # What is not to be expanded is apt's own.
    # shellcheck disable=SC2016
    apt-get indextargets 'Created-By: Packages' 'Origin: Debian' 'Label: Debian' \
        --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' | sort -u
}

# A minimal system with these packages as FOLDER/system.tar, which stays for the next time.
# usage: make_system FOLDER [PACKAGE...]
make_system() {
    local folder=$1
    shift
    [ "$(cat "$folder/complete" 2>/dev/null)" != "system of $*" ] || return 0
    mkdir -p "$folder"
    rm -f "$folder/complete"
    [ -n "$(repositories)" ] || fail "apt is configured without Debian"
    repositories | mmdebstrap --quiet --variant=minbase --include="$(IFS=,; echo "$*")" \
        '' "$folder/system.tar" -
    echo "system of $*" >"$folder/complete"
}

# Unpacks it afresh as FOLDER/root.
# usage: unpack_system FOLDER
unpack_system() {
    rm -rf "$1/root"
    mkdir "$1/root"
    tar --extract --file "$1/system.tar" --directory "$1/root"
}

# shellcheck shell=sh
# Functions for the scripts "ethernet" and "wifi": they create the network namespace "peer" with the
# other ends of the instrument's links, each with a DHCP server of its own.

make_peer() {
    [ ! -e /run/netns/peer ] || return 0
    mkdir -p /run/netns
    ip netns add peer
    ip -n peer link set lo up
}

# Counts the DHCP servers that listen, on UDP port 67.
count_servers() {
    ip netns exec peer grep -c ':0043 ' /proc/net/udp || :
}

# start_server PIDFILE INTERFACE NETWORK: gives the interface, which must be up, the first address of the
# network (such as 10.77.0), and starts a server that leases the addresses .50 to .99. With --no-daemon
# the server keeps its user and groups; in an ordinary user's world, the server cannot change them.
start_server() {
    ip -n peer address add "$3.1/24" dev "$2"
    # By default a veth leaves checksums to hardware, which it does not have. ConnMan drops DHCP
    # offers without a checksum.
    ip netns exec peer ethtool --offload "$2" tx off >/dev/null
    servers=$(count_servers)
    ip netns exec peer dnsmasq --no-daemon --conf-file=/dev/null --user=root --port=0 \
        --no-ping --interface="$2" --bind-interfaces --dhcp-authoritative \
        --dhcp-range="$3.50,$3.99,255.255.255.0,1h" \
        --dhcp-option=option:router,"$3.1" --dhcp-option=option:dns-server,"$3.1" \
        --dhcp-leasefile="$1.leases" >"$1.log" 2>&1 &
    echo $! >"$1"
    # Wait until the server listens: otherwise ConnMan's first request would be lost.
    attempt=0
    until [ "$(count_servers)" -gt "$servers" ]; do
        attempt=$((attempt + 1))
        if [ "$attempt" -gt 500 ]; then
            echo "the DHCP server on $2 does not start: $(cat "$1.log")" >&2
            exit 1
        fi
        sleep 0.01
    done
}

# stop_server PIDFILE: ends the server if it runs, even if it is muted.
stop_server() {
    [ -e "$1" ] || return 0
    old=$(cat "$1")
    rm "$1"
    kill -CONT "$old" && kill -KILL "$old" || return 0
    # The next server must not see the old one's socket.
    while readlink "/proc/$old/exe" >/dev/null; do
        sleep 0.01
    done
}

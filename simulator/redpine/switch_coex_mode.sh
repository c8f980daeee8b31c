#!/bin/sh
# usage: switch_coex_mode.sh MODE
# Switches the simulated Wi-Fi module to a mode: 0 Ethernet only, 1 station, 2 access point. Mode 2 creates
# the interface "wifi_ap" and starts hostapd and dhcpd on it; every other mode removes the interface and
# ends the two programs.
#
# The script logs "start MODE" and "end MODE" in /run/strandel-redpine/log. Files beside the log change
# the script's behaviour:
#   hold          a FIFO: the script waits until a line is written to it
#   delay         a number: the script waits this many seconds
#   fail          a status: the script exits with this status and switches nothing
#   no-interface  no-carrier  no-hostapd  no-dhcpd
#                 the script leaves that part of the access point out
set -u
mode=${1:-}
directory=/run/strandel-redpine
configuration=/tmp/User_part/hostapd.conf
# Use the machine's clock, even if the caller's clock is faked.
unset LD_PRELOAD FAKETIME FAKETIME_SHARED

say() {
    echo "$1 $mode" >>"$directory/log"
}

told() {
    [ -e "$directory/$1" ]
}

end_program() {
    [ -e "$directory/$1.pid" ] || return 0
    pid=$(cat "$directory/$1.pid")
    kill "$pid" 2>/dev/null && tail --pid="$pid" -s 0.02 -f /dev/null
    rm -f "$directory/$1.pid"
}

take_access_point_down() {
    end_program hostapd
    end_program dhcpd
    # Call "ip" only if needed: it waits for the kernel's lock on all network interfaces of the machine.
    [ ! -e /sys/class/net/wifi_ap ] || ip link delete wifi_ap 2>/dev/null
}

await() {
    attempts=0
    until "$@" || [ "$attempts" -ge 1000 ]; do
        attempts=$((attempts + 1))
        sleep 0.01
    done
}

# shellcheck disable=SC2317
has_carrier() {
    ip link show dev wifi_ap | grep -q 'state UP'
}

# wifi_ap has a carrier only while the other end of the pair, wifi_air, is up. The kernel reports the
# carrier after "ip" has returned, so wait for it.
bring_interface_up() {
    ip link add wifi_ap address 02:aa:bb:cc:dd:03 type veth peer name wifi_air
    ip address add "$address/24" dev wifi_ap
    ip link set wifi_ap up
    told no-carrier || {
        ip link set wifi_air up
        await has_carrier
    }
}

# hostapd returns before it has written the PID file that we need to end it.
start_hostapd() {
    hostapd -B -P "$directory/hostapd.pid" "$configuration" || return 0
    await test -s "$directory/hostapd.pid"
}

start_dhcpd() {
    network=${address%.*}
    cat >"$directory/dhcpd.conf" <<CONFIGURATION
authoritative;
subnet $network.0 netmask 255.255.255.0 {
    range $network.100 $network.200;
    option routers $address;
}
CONFIGURATION
    : >"$directory/dhcpd.leases"
    dhcpd -4 -q -cf "$directory/dhcpd.conf" -lf "$directory/dhcpd.leases" -pf "$directory/dhcpd.pid" wifi_ap
}

bring_access_point_up() {
    address=$(sed -n 's/^own_ip_addr=\([0-9.]\{1,\}\)$/\1/p' "$configuration" | tail -n 1)
    address=${address:-192.168.2.1}
    told no-interface || bring_interface_up
    told no-hostapd || start_hostapd
    told no-dhcpd || told no-interface || start_dhcpd
}

mkdir -p "$directory"
say start
[ ! -p "$directory/hold" ] || read -r _ <"$directory/hold"
! told delay || sleep "$(cat "$directory/delay")"
status=0
if told fail; then
    status=$(cat "$directory/fail")
else
    take_access_point_down
    [ "$mode" != 2 ] || bring_access_point_up
fi >>"$directory/output" 2>&1
say end
exit "$status"

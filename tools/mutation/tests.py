"""The tests that judge the mutants of each file of src/, the quick ones first."""

import glob
import os

TREE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

NETWORK = ['test_connections', 'test_ethernet_settings', 'test_ethernet', 'test_wifiscan',
           'test_wificonnect', 'test_wifiattempt', 'test_wifidisconnect']
WIFI = ['test_wifiscan', 'test_wificonnect', 'test_wifiattempt', 'test_wifidisconnect',
        'test_connmanagent', 'test_realwifi', 'test_wifi_connman_1',
        'test_wifi_connman_2']
LIGHT = ['test_brightness', 'test_backlight']

# The files with pure functions: no bus, hardware or clock.
PURE = {
    'app/enumnames': ['test_enumnames', 'test_led'],
    'app/errorcode': ['test_error', 'test_users'],
    'devices/backlightsteps': ['test_backlightsteps'],
    'devices/batterystatus': ['test_batterystatus'],
    'devices/brightnesslevels': ['test_brightnesslevels'],
    'devices/ledpattern': ['test_ledpattern'],
    'devices/leds': ['test_led'],
    'devices/lightsettings': ['test_settings', *LIGHT],
    'devices/screenmodel': ['test_screenmodel'],
    'devices/uevent': ['test_uevent'],
    'identity/boardrevision': ['test_records'],
    'identity/crc16': ['test_crc16'],
    'identity/instrumentrecord': ['test_records', 'test_eeprom'],
    'identity/measurerecord': ['test_records', 'test_eeprom'],
    'identity/recordframe': ['test_records', 'test_eeprom'],
    'network/accesspointtable': ['test_linkexploration', 'test_wifiap'],
    'network/agentanswer': ['test_agentanswer'],
    'network/ethernettable': ['test_linkexploration', 'test_ethernet', 'test_ethernet_timeout'],
    'network/hostapdtemplate': ['test_hostapdtemplate'],
    'network/ipv4repair': ['test_ipv4repair'],
    'network/ipv4settings': ['test_ethernet_settings'],
    'network/linkmachine': ['test_stationtable', 'test_linkexploration'],
    'network/programs': ['test_programs', 'test_wifiap'],
    'app/regularfile': ['test_regularfile', 'test_wifiapconfiguration'],
    'network/settingtext': ['test_ethernet_settings', 'test_wifiapconfiguration'],
    'network/stationtable': ['test_stationtable', 'test_linkexploration', *WIFI],
    'network/tcpipstate': ['test_ethernet', 'test_wificonnect'],
    'network/wifiservices': ['test_wifiservices', 'test_wifiattempt', 'test_wificonnect'],
    'network/wifitrace': ['test_wifitrace', 'test_wifiscan'],
    'app/descriptor': ['test_trustedpath', 'test_profilefolder'],
    'app/trustedpath': ['test_trustedpath', 'test_users'],
    'users/linktarget': ['test_linktarget', 'test_users'],
    'users/profilefolder': ['test_profilefolder', 'test_users'],
    'users/profiles': ['test_users', 'test_settings'],
}

ADAPTORS = {
    'app/arguments': ['test_introspection', 'test_limitedmap', 'test_users', 'test_devicemgr',
                      'test_backlight'],
    'app/busvalue': ['test_connmanobject', 'test_busvalue', 'test_eeprom', 'test_sweep_identity',
                     'test_ethernet_settings', 'test_connmanagent', 'test_wificonnect'],
    'app/childsignal': ['test_startup', 'test_modescript'],
    'app/error': ['test_users', 'test_errors'],
    'app/main': ['test_startup', 'test_policy', 'test_introspection', 'test_devicemgr'],
    'app/receivelimits': ['campaign_deafness'],
    'app/settings': ['test_settings', 'test_users', 'test_alimentation', *LIGHT],
    'app/slotcache': ['test_slotcache'],
    'app/systemdwatchdog': ['test_systemdwatchdog', 'test_wifidisconnect'],
    'devices/kyalimentation': ['test_alimentation', 'test_sweep_power', 'test_led',
                               'test_devicemgr'],
    'devices/kybrightness': [*LIGHT, 'test_devicemgr'],
    'devices/kydevicemgr': ['test_devicemgr', 'test_introspection', 'test_led', 'test_storage',
                            'test_temperature', 'test_alimentation', 'test_backlight',
                            'test_startup'],
    'devices/kyled': ['test_led', 'test_storage', 'test_alimentation', 'test_sweep_power'],
    'devices/lightsensor': [*LIGHT, 'test_boardsensor'],
    'devices/screenlight': ['test_backlight'],
    'devices/kyscreenbacklight': ['test_backlight', 'test_brightness', 'test_introspection'],
    'devices/kysdcardthread': ['test_storage', 'test_devicemgr', 'test_startup'],
    'devices/kystorage': ['test_storage', 'test_devicemgr'],
    'devices/kytemperaturewatcher': ['test_temperature', 'test_devicemgr', 'test_sweep_power'],
    'devices/kywatchdog': ['test_watchdog'],
    'identity/boardrevisions': ['test_version', 'test_sweep_identity', 'test_eeprom'],
    'identity/eeproms': ['test_eeprom', 'test_sweep_identity'],
    'identity/kyversion': ['test_eeprom', 'test_version', 'test_sweep_identity', 'test_devicemgr',
                           'test_startup'],
    'identity/softwareversion': ['test_version', 'test_sweep_identity'],
    'network/connman': ['test_connmanobject', *NETWORK, 'test_connmanagent', 'test_realwifi',
                        'test_ethernet_connman'],
    'network/kycommgr': ['test_startup', 'test_introspection', *NETWORK],
    'network/kyconnmanagent': ['test_agentanswer', 'test_connmanagent', 'test_introspection'],
    'network/accesspoint': ['test_networktimers', 'test_wifiap', 'test_wifiapconfiguration'],
    'network/busfailure': ['test_ethernet', 'test_wifiap'],
    'network/connmanservice': [*NETWORK, 'test_ethernet_connman'],
    'network/ethernetlink': ['test_networktimers', 'test_ethernet', 'test_connections',
                             'test_ethernet_settings', 'test_ethernet_timeout',
                             'test_ethernet_connman'],
    'network/kyethernet': ['test_ethernet', 'test_connections'],
    'network/linkdriver': ['test_networktimers', *NETWORK, 'test_ethernet_timeout', 'test_wifiap'],
    'network/modescript': [*NETWORK, 'test_wifiap', 'test_modescript'],
    'network/kynetwork': ['test_network'],
    'network/kytcpip': [*NETWORK, 'test_ethernet_connman'],
    'network/kywifi': [*WIFI, 'test_connections'],
    'network/kywifiap': ['test_wifiap', 'test_wifiapconfiguration'],
    'network/networkinterface': ['test_networkinterface', 'test_ethernet_settings', 'test_ethernet',
                                 'test_wifiap', 'test_wifiscan'],
    'network/technologywatch': [*NETWORK],
    'network/wifistation': ['test_networktimers', *WIFI, 'test_connections'],
    'users/kyusermgr': ['test_users', 'test_settings', 'test_startup'],
}


def tests_of(file):
    """Returns the tests of a file; if the tables above do not list the file, those of its directory."""
    name = os.path.splitext(os.path.relpath(file, 'src'))[0]
    others = sorted(glob.glob(os.path.join(TREE, 'tests', os.path.dirname(name), 'test_*.cpp')))
    return PURE.get(name) or ADAPTORS.get(name) or [
        os.path.splitext(os.path.basename(path))[0] for path in others]

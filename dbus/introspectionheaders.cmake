# Generates a header from each introspection document, for example introspection/LED.h from
# ...BoardManager.LED.xml. The header's macro, here INTROSPECTION_LED, is the document's interface
# element as a string literal: the introspection data of an adaptor.
function(write_introspection_headers directory)
    file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/dbus/*.xml)
    foreach(document ${documents})
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
        string(REGEX REPLACE ".*\\.([A-Za-z]+)\\.xml$" "\\1" name ${document})
        file(READ ${document} text)
        string(REGEX REPLACE "^.*(  <interface .*</interface>\n).*$" "\\1" text "${text}")
        string(REPLACE "\\" "\\\\" text "${text}")
        string(REPLACE "\"" "\\\"" text "${text}")
        string(REPLACE "\n" "\\n\" \\\n    \"" text "${text}")
        string(TOUPPER ${name} macro)
        file(CONFIGURE OUTPUT ${directory}/introspection/${name}.h @ONLY
            CONTENT "#define INTROSPECTION_${macro} \\\n    \"${text}\"\n")
    endforeach()
endfunction()

# Generates introspection/signals.h. Its macro INTROSPECTION_SIGNALS is the list of the daemon's
# signals as string literals: "Users.userChanged" and so on.
function(write_signal_names directory)
    file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/dbus/com.orvendis.*.xml)
    foreach(document ${documents})
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
        string(REGEX REPLACE ".*\\.([A-Za-z]+)\\.xml$" "\\1" interface ${document})
        file(STRINGS ${document} lines REGEX "<signal name=")
        foreach(line ${lines})
            string(REGEX REPLACE ".*name=\"([^\"]*)\".*" "\\1" signal ${line})
            list(APPEND names "    \"${interface}.${signal}\"")
        endforeach()
    endforeach()
    string(JOIN ", \\\n" names ${names})
    file(CONFIGURE OUTPUT ${directory}/introspection/signals.h @ONLY
        CONTENT "#define INTROSPECTION_SIGNALS \\\n${names}\n")
endfunction()

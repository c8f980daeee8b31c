# Makes a header of each introspection document, introspection/LED.h of ...BoardManager.LED.xml, whose macro
# INTROSPECTION_LED is the document's interface element as a string literal: what an adaptor shows on the bus.
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

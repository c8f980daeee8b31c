# Generates barerest.h. It has an empty adaptor for each of the daemon's interfaces that bareqt.h
# lacks, and addRest(), which adds these adaptors to the objects.
function(write_bare_rest header)
    file(READ ${CMAKE_CURRENT_SOURCE_DIR}/bareqt.h written)
    file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/dbus/com.orvendis.*.xml)
    foreach(document ${documents})
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
        string(REGEX REPLACE ".*\\.([A-Za-z]+)\\.xml$" "\\1" interface ${document})
        string(FIND "${written}" "Bare.${interface}\"" place)
        if(NOT place EQUAL -1)
            continue()
        endif()
        file(STRINGS ${document} object REGEX "<node name=")
        string(REGEX REPLACE ".*\"/Ky(.*)Mgr\".*" "\\1" object ${object})
        string(TOLOWER ${object} object)
        string(APPEND classes "
class Rest${interface} : public Bare
{
    Q_OBJECT
    Q_CLASSINFO(\"D-Bus Interface\", \"com.orvendis.Strandel.Bare.${interface}\")

public:
    using Bare::Bare;
};
")
        string(APPEND additions "    new Rest${interface}(${object});\n")
    endforeach()
    file(CONFIGURE OUTPUT ${header} @ONLY CONTENT
"#include \"bareqt.h\"
${classes}
inline void addRest(QObject *config, QObject *com, QObject *device)
{
    Q_UNUSED(config);
    Q_UNUSED(com);
    Q_UNUSED(device);
${additions}}
")
endfunction()

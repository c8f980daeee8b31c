# The maker's hardware libraries, from the directories that BOARD_HEADERS and BOARD_LIBRARIES name,
# instead of the simulated ones.
if(NOT BOARD_HEADERS OR NOT BOARD_LIBRARIES)
    message(FATAL_ERROR "BOARD_HEADERS and BOARD_LIBRARIES go together: give both or neither")
endif()

foreach(header kyals kybacklight kybatmonitor kyboardrev kyeeprom kyfaccess kyleds kypowerman
        kysocmanager kytemperature)
    if(NOT EXISTS ${BOARD_HEADERS}/${header}.h)
        message(FATAL_ERROR "There is no ${header}.h in ${BOARD_HEADERS}")
    endif()
endforeach()

foreach(library KyBoard KyFileaccess KySoC)
    find_file(${library}_FILE NAMES lib${library}.so.1 lib${library}.so PATHS ${BOARD_LIBRARIES}
        NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    add_library(${library} SHARED IMPORTED GLOBAL)
    # Imported headers are system headers: their warnings are not our errors.
    set_target_properties(${library} PROPERTIES
        IMPORTED_LOCATION ${${library}_FILE}
        INTERFACE_INCLUDE_DIRECTORIES ${BOARD_HEADERS}
        INTERFACE_LINK_OPTIONS -Wl,-rpath-link,${BOARD_LIBRARIES})
endforeach()

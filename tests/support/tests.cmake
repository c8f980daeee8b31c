# How tests and campaigns are built and run.

# What the world is told that a test runs in, up to the test's own program.
if(CMAKE_CROSSCOMPILING)
    # The machine's own test programs test the other machine's daemon, which an emulator runs.
    set(NATIVE_BUILD "" CACHE PATH "Where this tree is built for the machine itself")
    set(native_libraries ${NATIVE_BUILD}/simulator/board)
    set(world_options
        --keep ${PROJECT_BINARY_DIR} --keep ${NATIVE_BUILD} --keep ${CMAKE_SYSROOT}
        --libraries ${native_libraries}
        --programs ${PEERS}
        -- ${PROJECT_SOURCE_DIR}/simulator/emulated
        ${CMAKE_SYSROOT} ${PROJECT_BINARY_DIR} ${NATIVE_BUILD})
    set(supplicant ${NATIVE_BUILD}/simulator/supplicant)
    # Without it Qt cannot start programs there (simulator/emulated).
    set(CMAKE_CROSSCOMPILING_EMULATOR ${NATIVE_BUILD}/tests/support/refuse pidfd
        ${CMAKE_CROSSCOMPILING_EMULATOR})
    set(patience 5)
    # What an emulator cannot show.
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS support/arm-exceptions.txt)
    file(STRINGS support/arm-exceptions.txt exceptions REGEX "^[^#]")
    foreach(exception IN LISTS exceptions)
        string(REGEX MATCH "^([a-z_]+) ([A-Za-z]+): ." matched "${exception}")
        if(NOT matched)
            message(FATAL_ERROR "arm-exceptions.txt: ${exception}")
        endif()
        list(APPEND left_out_of_${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
    endforeach()
else()
    set(native_libraries $<TARGET_FILE_DIR:KyBoard>)
    set(world_options
        --keep ${PROJECT_BINARY_DIR}
        --libraries ${native_libraries}
        --programs $<TARGET_FILE_DIR:KyBoardManager>
        --programs $<TARGET_FILE_DIR:kyboardctl>
        --programs ${PEERS}
        --)
    set(supplicant $<TARGET_FILE_DIR:supplicantstandin>)
    set(patience 1)
endif()

# A test of pure logic: runs as it is.
function(add_pure_test name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE boardmanager testsupport project_options)
    if(left_out_of_${name})
        add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/tests/support/without
            ${left_out_of_${name}} -- ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${name}>)
    else()
        add_test(NAME ${name} COMMAND ${name})
    endif()
    math(EXPR timeout "60 * ${patience}")
    set_tests_properties(${name} PROPERTIES TIMEOUT ${timeout} FAIL_REGULAR_EXPRESSION "SKIP   :"
        ENVIRONMENT LD_LIBRARY_PATH=$<TARGET_FILE_DIR:KyBoard>)
endfunction()

# A test of behaviour: runs in a private world, where it starts the daemon itself.
function(add_world_test name)
    if(CMAKE_CROSSCOMPILING)
        add_executable(${name} EXCLUDE_FROM_ALL ${ARGN})
        set(program ${NATIVE_BUILD}/tests/${name})
        if(left_out_of_${name})
            set(program ${PROJECT_SOURCE_DIR}/tests/support/without ${left_out_of_${name}} --
                ${program})
        endif()
    else()
        add_executable(${name} ${ARGN})
        set(program $<TARGET_FILE:${name}>)
    endif()
    target_link_libraries(${name} PRIVATE boardmanager testsupport project_options)
    add_dependencies(${name} KyBoardManager kyboardctl peers)
    add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/simulator/world ${world_options}
        ${program})
    math(EXPR timeout "120 * ${patience}")
    set_tests_properties(${name} PROPERTIES TIMEOUT ${timeout} FAIL_REGULAR_EXPRESSION "SKIP   :")
endfunction()

# A test of what is this machine's alone, as scripts and documents: another machine's build adds
# nothing to it.
function(add_tool_test name)
    if(CMAKE_CROSSCOMPILING)
        add_executable(${name} EXCLUDE_FROM_ALL ${ARGN})
        target_link_libraries(${name} PRIVATE boardmanager testsupport project_options)
    else()
        add_pure_test(${name} ${ARGN})
    endif()
endfunction()

# A check that measures: it writes the lines to be printed into the file that FIGURES names. One with
# LONG runs with ./test --long alone. An emulator's figures would say nothing.
function(add_check name)
    if(CMAKE_CROSSCOMPILING)
        return()
    endif()
    cmake_parse_arguments(CHECK "LONG" "TIMEOUT" "COMMAND" ${ARGN})
    add_test(NAME ${name} COMMAND ${CHECK_COMMAND})
    set_tests_properties(${name} PROPERTIES
        ENVIRONMENT FIGURES=${PROJECT_BINARY_DIR}/figures/${name}
        LABELS $<IF:$<BOOL:${CHECK_LONG}>,long,check>
        TIMEOUT ${CHECK_TIMEOUT})
endfunction()

# A check in a private world, whose program ENVIRONMENT tells how much to do.
function(add_world_check name)
    if(CMAKE_CROSSCOMPILING)
        return()
    endif()
    cmake_parse_arguments(CHECK "LONG" "TIMEOUT;PROGRAM" "ENVIRONMENT" ${ARGN})
    set(long "")
    if(CHECK_LONG)
        set(long LONG)
    endif()
    # The world may hide the build folder, but not a file that is open.
    add_check(${name} ${long} TIMEOUT ${CHECK_TIMEOUT}
        COMMAND sh -c "exec \"$@\" 3>>\"$FIGURES\"" sh ${PROJECT_SOURCE_DIR}/simulator/world
        ${world_options} env FIGURES=/proc/self/fd/3 ${CHECK_ENVIRONMENT} $<TARGET_FILE:${CHECK_PROGRAM}>)
    set_tests_properties(${name} PROPERTIES FAIL_REGULAR_EXPRESSION "SKIP   :")
endfunction()

function(add_world_check_program name)
    if(CMAKE_CROSSCOMPILING)
        add_executable(${name} EXCLUDE_FROM_ALL ${ARGN})
    else()
        add_executable(${name} ${ARGN})
    endif()
    target_link_libraries(${name} PRIVATE boardmanager testsupport project_options)
    add_dependencies(${name} KyBoardManager kyboardctl peers)
endfunction()

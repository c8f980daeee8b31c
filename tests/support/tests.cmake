# Functions that add tests and campaigns.

# Sets the arguments of simulator/world for a test, up to the name of the test program.
if(CMAKE_CROSSCOMPILING)
    # This machine's test programs test the other machine's daemon, which an emulator runs.
    set(NATIVE_BUILD "" CACHE PATH "Where this tree is built for the machine itself")
    if(NOT EXISTS ${NATIVE_BUILD}/build.ninja)
        # Unset the toolchain file's settings for pkg-config: they are for the other machine.
        execute_process(WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} COMMAND_ERROR_IS_FATAL ANY
            COMMAND ${CMAKE_COMMAND} -E env
            --unset=PKG_CONFIG_SYSROOT_DIR --unset=PKG_CONFIG_LIBDIR
            ${CMAKE_COMMAND} --preset release -B ${NATIVE_BUILD})
    endif()
    add_custom_target(native ALL COMMAND ${CMAKE_COMMAND} --build ${NATIVE_BUILD} USES_TERMINAL)
    set(native_libraries ${NATIVE_BUILD}/simulator/board)
    set(world_options
        --keep ${PROJECT_BINARY_DIR} --keep ${NATIVE_BUILD} --keep ${CMAKE_SYSROOT}
        --libraries ${native_libraries}
        --programs ${PEERS}
        -- ${PROJECT_SOURCE_DIR}/simulator/emulated
        ${CMAKE_SYSROOT} ${PROJECT_BINARY_DIR} ${NATIVE_BUILD})
    set(supplicant ${NATIVE_BUILD}/simulator/supplicant)
    # Qt cannot start programs under the emulator unless pidfds are refused (simulator/emulated).
    set(CMAKE_CROSSCOMPILING_EMULATOR ${NATIVE_BUILD}/tests/support/refuse pidfd
        ${CMAKE_CROSSCOMPILING_EMULATOR})
    set(timeout_factor 5)
    # The test functions that are meaningless under an emulator.
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
    set(timeout_factor 1)
    if(SANITIZE OR COVERAGE)
        set(timeout_factor 3)
    endif()
endif()

# A test program that links SUPPORT, one of the libraries of tests/support. Only SOURCE needs moc, and
# includes its output. Moc gets no include paths: without headers it takes a tenth of the time.
function(add_test_program name support source)
    add_executable(${name} ${source} ${ARGN})
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    get_filename_component(base ${source} NAME_WE)
    set(generated ${CMAKE_CURRENT_BINARY_DIR}/${base}.moc)
    add_custom_command(OUTPUT ${generated} VERBATIM
        COMMAND Qt5::moc ${CMAKE_CURRENT_SOURCE_DIR}/${source} -o ${generated}
        DEPENDS ${source})
    target_sources(${name} PRIVATE ${generated})
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
    target_link_libraries(${name} PRIVATE ${support} test_options)
    use_precompiled_headers(${name})
endfunction()

# A program that tests pure logic. The linker drops unused libraries, so that the program does not need
# the hardware libraries.
function(add_pure_program name)
    add_test_program(${name} puresupport ${ARGN})
    target_link_libraries(${name} PRIVATE boardlogic)
    target_link_options(${name} PRIVATE -Wl,--as-needed)
endfunction()

# A program that starts the daemon. This machine's programs also test another machine's daemon.
function(add_world_program name)
    add_test_program(${name} testsupport ${ARGN})
    add_dependencies(${name} KyBoardManager kyboardctl peers)
    if(CMAKE_CROSSCOMPILING)
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
endfunction()

# Ends tests that hang, and fails tests that skip a function. The timeout is no bound on speed: a busy
# machine is slow.
function(limit_tests)
    math(EXPR timeout "600 * ${timeout_factor}")
    set_tests_properties(${ARGN} PROPERTIES TIMEOUT ${timeout} FAIL_REGULAR_EXPRESSION "SKIP   :")
endfunction()

# A test of pure logic: runs directly.
function(add_pure_test name)
    add_pure_program(${name} ${ARGN})
    if(left_out_of_${name})
        add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/tests/support/without
            ${left_out_of_${name}} -- ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${name}>)
    else()
        add_test(NAME ${name} COMMAND ${name})
    endif()
    limit_tests(${name})
endfunction()

# A test of behaviour: runs in a private world, where it starts the daemon itself. With PARTS N a
# long test runs as N tests, NAME_1 to NAME_N, each with a part of its functions.
function(add_world_test name)
    cmake_parse_arguments(TEST "" "PARTS" "" ${ARGN})
    add_world_program(${name} ${TEST_UNPARSED_ARGUMENTS})
    if(CMAKE_CROSSCOMPILING)
        set(program ${NATIVE_BUILD}/tests/${name})
        if(left_out_of_${name})
            set(program ${PROJECT_SOURCE_DIR}/tests/support/without ${left_out_of_${name}} --
                ${program})
        endif()
    else()
        set(program $<TARGET_FILE:${name}>)
    endif()
    set(world ${PROJECT_SOURCE_DIR}/simulator/world ${world_options})
    # Run the test in a process group of its own: otherwise all parallel tests of ctest would share one.
    list(PREPEND program setsid)
    set(tests "")
    if(TEST_PARTS)
        foreach(part RANGE 1 ${TEST_PARTS})
            list(APPEND tests ${name}_${part})
            add_test(NAME ${name}_${part}
                COMMAND ${world} env TEST_PART=${part}/${TEST_PARTS} ${program})
        endforeach()
        # Start these long tests first, even when ctest has not yet measured any durations.
        set_tests_properties(${tests} PROPERTIES COST 60)
    else()
        set(tests ${name})
        add_test(NAME ${name} COMMAND ${world} ${program})
    endif()
    limit_tests(${tests})
endfunction()

# A test of scripts and documents, which are the same on every machine.
function(add_tool_test name)
    add_test_program(${name} testsupport ${ARGN})
    target_link_options(${name} PRIVATE -Wl,--as-needed)
    if(CMAKE_CROSSCOMPILING)
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
        return()
    endif()
    add_test(NAME ${name} COMMAND ${name})
    limit_tests(${name})
endfunction()

# A campaign. It writes its figures to the file that the variable FIGURES names; ./test prints them.
# With LONG, it runs only in ./test --long. Under an emulator, the figures would be meaningless. The
# timeouts only end campaigns that hang.
function(add_campaign name)
    if(CMAKE_CROSSCOMPILING)
        return()
    endif()
    cmake_parse_arguments(CAMPAIGN "LONG" "" "COMMAND" ${ARGN})
    add_test(NAME ${name} COMMAND ${CAMPAIGN_COMMAND})
    set_tests_properties(${name} PROPERTIES
        ENVIRONMENT FIGURES=${PROJECT_BINARY_DIR}/figures/${name}
        LABELS $<IF:$<BOOL:${CAMPAIGN_LONG}>,long,campaign>
        TIMEOUT $<IF:$<BOOL:${CAMPAIGN_LONG}>,21600,1800>)
endfunction()

# A campaign in a private world. The world may hide the build directory, so the campaign inherits the
# open file of its figures.
function(add_world_campaign name)
    cmake_parse_arguments(CAMPAIGN "LONG" "" "COMMAND" ${ARGN})
    set(long "")
    if(CAMPAIGN_LONG)
        set(long LONG)
    endif()
    add_campaign(${name} ${long}
        COMMAND sh -c "exec \"$@\" 3>>\"$FIGURES\"" sh ${PROJECT_SOURCE_DIR}/simulator/world
        ${world_options} env FIGURES=/proc/self/fd/3 ${CAMPAIGN_COMMAND})
    if(TEST ${name})
        set_tests_properties(${name} PROPERTIES FAIL_REGULAR_EXPRESSION "SKIP   :")
    endif()
endfunction()

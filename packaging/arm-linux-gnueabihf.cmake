# The toolchain file for 32-bit ARM with hard floating point. Libraries and headers come from
# CMAKE_SYSROOT; if this directory does not exist, tools/arm-sysroot fills it from Debian's packages. The
# compiler, and programs that run during the build, are this machine's.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)

if(CMAKE_SYSROOT AND NOT EXISTS ${CMAKE_SYSROOT})
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../tools/arm-sysroot ${CMAKE_SYSROOT}
        COMMAND_ERROR_IS_FATAL ANY)
endif()

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${CMAKE_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)

# Runs the tests that are ARM programs. Without -L: with it, a program that opens "/" gets the sysroot.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static ${CMAKE_SYSROOT}/lib/ld-linux-armhf.so.3 --library-path
    ${CMAKE_SYSROOT}/lib/arm-linux-gnueabihf:${CMAKE_SYSROOT}/usr/lib/arm-linux-gnueabihf)

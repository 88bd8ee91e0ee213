# 32-bit ARM, hard float. The libraries come from a private sysroot that scripts/armhf-sysroot fills.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)

get_filename_component(ARMHF_DEFAULT_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build/armhf-sysroot/root" ABSOLUTE)
set(ARMHF_SYSROOT "${ARMHF_DEFAULT_SYSROOT}" CACHE PATH "Folder with the ARM libraries")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ARMHF_SYSROOT)
if(NOT EXISTS "${ARMHF_SYSROOT}/usr/include")
  message(FATAL_ERROR "No ARM libraries in ${ARMHF_SYSROOT}: run scripts/armhf-sysroot first")
endif()

set(CMAKE_FIND_ROOT_PATH "${ARMHF_SYSROOT}" /usr/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(armhf_link_flags "")
foreach(folder lib/arm-linux-gnueabihf usr/lib/arm-linux-gnueabihf)
  string(APPEND armhf_link_flags " -L${ARMHF_SYSROOT}/${folder} -Wl,-rpath-link,${ARMHF_SYSROOT}/${folder}")
endforeach()
set(CMAKE_CXX_FLAGS_INIT "-isystem ${ARMHF_SYSROOT}/usr/include -Wno-psabi")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${armhf_link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${armhf_link_flags}")

set(ENV{PKG_CONFIG_LIBDIR}
    "${ARMHF_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${ARMHF_SYSROOT}/usr/share/pkgconfig")
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${ARMHF_SYSROOT}")

set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-arm;-L;${ARMHF_SYSROOT}")

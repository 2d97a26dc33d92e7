# The CIM framework: our own small part of it, or an installed OpenPegasus.

set(MPUEVENT_PEGASUS embedded CACHE STRING "CIM framework: embedded or system")
set_property(CACHE MPUEVENT_PEGASUS PROPERTY STRINGS embedded system)

add_library(mpuevent_pegasus INTERFACE)

if(MPUEVENT_PEGASUS STREQUAL "embedded")
    target_include_directories(mpuevent_pegasus INTERFACE
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/platform/pegasus>)
    return()
elseif(NOT MPUEVENT_PEGASUS STREQUAL "system")
    message(FATAL_ERROR "MPUEVENT_PEGASUS is '${MPUEVENT_PEGASUS}'; it must be embedded or system")
endif()

set(PEGASUS_ROOT "" CACHE PATH "OpenPegasus source tree (holds src/Pegasus)")
set(PEGASUS_HOME "" CACHE PATH "OpenPegasus installation (holds lib/libpegcommon.so)")

if(NOT EXISTS "${PEGASUS_ROOT}/src/Pegasus/Common/String.h")
    message(FATAL_ERROR "PEGASUS_ROOT '${PEGASUS_ROOT}' has no src/Pegasus/Common/String.h")
endif()
foreach(name IN ITEMS pegprovider pegcommon)
    if(NOT EXISTS "${PEGASUS_HOME}/lib/lib${name}.so")
        message(FATAL_ERROR "PEGASUS_HOME '${PEGASUS_HOME}' has no lib/lib${name}.so")
    endif()
    target_link_libraries(mpuevent_pegasus INTERFACE "${PEGASUS_HOME}/lib/lib${name}.so")
endforeach()

if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    target_compile_definitions(mpuevent_pegasus INTERFACE PEGASUS_PLATFORM_LINUX_X86_64_GNU)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(ppc|powerpc)$")
    target_compile_definitions(mpuevent_pegasus INTERFACE PEGASUS_PLATFORM_LINUX_PPC_GNU)
else()
    message(FATAL_ERROR "No OpenPegasus platform known for '${CMAKE_SYSTEM_PROCESSOR}'")
endif()

target_include_directories(mpuevent_pegasus SYSTEM INTERFACE "${PEGASUS_ROOT}/src")
list(APPEND CMAKE_INSTALL_RPATH "${PEGASUS_HOME}/lib") # the build tree's rpath comes by itself

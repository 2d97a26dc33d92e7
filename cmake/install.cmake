# cmake --install and the Debian packages, in parts: library, development, command, c,
# c_development, python.

include(CMakePackageConfigHelpers)

set(include_dir ${CMAKE_INSTALL_INCLUDEDIR}/MPUEvent)
set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/MPUEvent)

# ---- library -----------------------------------------------------------------------------------

# Public is what a caller or a decoder outside of the library needs. None of it may include what is
# not installed: scripts/test-install compiles each header by itself.
install(DIRECTORY include/ DESTINATION ${include_dir} COMPONENT development)
if(MPUEVENT_PEGASUS STREQUAL "embedded")
    install(DIRECTORY platform/pegasus/Pegasus DESTINATION ${include_dir} COMPONENT development)
endif()

set(libraries mpuevent_static mpuevent_pegasus)
if(TARGET MPUEvent)
    list(APPEND libraries MPUEvent)
endif()
install(TARGETS ${libraries} EXPORT MPUEventTargets
    LIBRARY COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    INCLUDES DESTINATION ${include_dir})
if(whole_program)
    # Without the compiler's intermediate code, which takes most of the archive's room and which no
    # other version of the compiler reads.
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_LIBDIR BASE_DIRECTORY "\${CMAKE_INSTALL_PREFIX}"
        OUTPUT_VARIABLE archive_dir)
    install(CODE "execute_process(COMMAND_ERROR_IS_FATAL ANY COMMAND \"${CMAKE_OBJCOPY}\"
        -R .gnu.lto_* -R .gnu.debuglto_* \"\$ENV{DESTDIR}${archive_dir}/libMPUEvent.a\")"
        COMPONENT development)
endif()
install(EXPORT MPUEventTargets NAMESPACE MPUEvent:: DESTINATION ${config_dir}
    COMPONENT development)
configure_package_config_file(cmake/MPUEventConfig.cmake.in MPUEventConfig.cmake
    INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(MPUEventConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/MPUEventConfig.cmake
    ${PROJECT_BINARY_DIR}/MPUEventConfigVersion.cmake
    DESTINATION ${config_dir} COMPONENT development)

set(pc_pegasus_libs "")
set(pc_pegasus_cflags "")
if(MPUEVENT_PEGASUS STREQUAL "system")
    set(pc_pegasus_libs " -L${PEGASUS_HOME}/lib -lpegprovider -lpegcommon")
    get_target_property(definitions mpuevent_pegasus INTERFACE_COMPILE_DEFINITIONS)
    list(TRANSFORM definitions PREPEND " -D")
    list(JOIN definitions "" definitions)
    set(pc_pegasus_cflags " -isystem ${PEGASUS_ROOT}/src${definitions}")
endif()
# Relative, so that an installed tree can be moved.
cmake_path(SET pc_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${pc_dir} OUTPUT_VARIABLE pc_prefix)
configure_file(cmake/mpuevent.pc.in mpuevent.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/mpuevent.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
install(FILES docs/libMPUEvent.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT development)

# ---- command -----------------------------------------------------------------------------------

if(TARGET mpuevent)
    install(TARGETS mpuevent RUNTIME COMPONENT command)

    # Written by scripts/renew from the command's own options.
    install(FILES docs/mpuevent.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
    install(FILES tools/mpuevent/completions/mpuevent.bash RENAME mpuevent
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT command)
    install(FILES tools/mpuevent/completions/_mpuevent
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT command)
    # lnav looks for formats in /etc and in home directories. Which prefix it is is known when it is
    # installed.
    install(CODE [[
        if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
            set(etc /etc)
        else()
            set(etc ${CMAKE_INSTALL_PREFIX}/etc)
        endif()]] COMPONENT command)
    install(CODE "file(INSTALL ${PROJECT_SOURCE_DIR}/docs/lnav-format.json RENAME mpuevent_log.json
        DESTINATION \${etc}/lnav/formats/mpuevent)" COMPONENT command)
endif()

# ---- C interface -------------------------------------------------------------------------------

if(TARGET mpuevent_c)
    install(TARGETS mpuevent_c EXPORT MPUEventCTargets
        LIBRARY COMPONENT c NAMELINK_COMPONENT c_development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    install(FILES c/mpuevent.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT c_development)
    # find_package(MPUEvent) finds it if it is there.
    install(EXPORT MPUEventCTargets NAMESPACE MPUEvent:: DESTINATION ${config_dir}
        COMPONENT c_development)
    configure_file(cmake/mpuevent-c.pc.in mpuevent-c.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/mpuevent-c.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT c_development)
endif()

# ---- provider ----------------------------------------------------------------------------------

if(TARGET MPURecordLogProvider)
    install(TARGETS MPURecordLogProvider LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(DIRECTORY provider/mof DESTINATION ${CMAKE_INSTALL_DATADIR}/mpuevent)
    install(FILES provider/mpuevent-provider.conf DESTINATION ${CMAKE_INSTALL_SYSCONFDIR})
endif()

if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()

# ---- Debian packages: cpack in a build folder configured for the prefix /usr -------------------

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "MPUEvent maintainers <maintainers@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL development)
if(TARGET MPUEvent)
    list(APPEND CPACK_COMPONENTS_ALL library)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libmpuevent1 (= ${PROJECT_VERSION})")
endif()
if(TARGET mpuevent)
    list(APPEND CPACK_COMPONENTS_ALL command)
endif()
if(TARGET mpuevent_c)
    list(APPEND CPACK_COMPONENTS_ALL c c_development)
    set(CPACK_DEBIAN_C_DEVELOPMENT_PACKAGE_DEPENDS "libmpuevent-c1 (= ${PROJECT_VERSION})")
endif()
if(TARGET mpuevent_python)
    list(APPEND CPACK_COMPONENTS_ALL python)
    math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
    set(python_version ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR})
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "libmpuevent-c1 (= ${PROJECT_VERSION}), \
python3 (>= ${python_version}), python3 (<< ${Python_VERSION_MAJOR}.${next_minor})")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-pandas)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-dask, python3-distributed")
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}) # libmpuevent-c is there
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libmpuevent1)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "Decoder of a storage controller's event log: library")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmpuevent-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Decoder of a storage controller's event log: headers and archive")
set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME mpuevent)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION admin)
file(WRITE ${PROJECT_BINARY_DIR}/conffiles "/etc/lnav/formats/mpuevent/mpuevent_log.json\n")
set(CPACK_DEBIAN_COMMAND_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/conffiles)
set(CPACK_COMPONENT_COMMAND_DESCRIPTION "Decoder of a storage controller's event log: command")
set(CPACK_DEBIAN_C_PACKAGE_NAME libmpuevent-c1)
set(CPACK_DEBIAN_C_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_C_DESCRIPTION "Decoder of a storage controller's event log: C interface")
set(CPACK_DEBIAN_C_DEVELOPMENT_PACKAGE_NAME libmpuevent-c-dev)
set(CPACK_DEBIAN_C_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_C_DEVELOPMENT_DESCRIPTION
    "Decoder of a storage controller's event log: header of the C interface")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-mpuevent)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "Decoder of a storage controller's event log: module for Python")
include(CPack)

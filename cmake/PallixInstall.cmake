# Installation: the shared library and its framework libraries, flat headers under
# include/PallixRuntime with the umbrella PallixRuntime.h, a CMake package, a pkg-config file,
# the pallix tool and its samples.

include(CMakePackageConfigHelpers)

set(PALLIX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/PallixRuntime)
get_property(_pallix_frameworks GLOBAL PROPERTY PALLIX_FRAMEWORK_TARGETS)

install(TARGETS PallixRuntime ${_pallix_frameworks}
    EXPORT PallixRuntimeTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

get_target_property(_pallix_install_headers PallixRuntime PALLIX_INSTALL_HEADERS)
install(FILES ${_pallix_install_headers}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/PallixRuntime COMPONENT development)

install(EXPORT PallixRuntimeTargets
    NAMESPACE PallixRuntime::
    DESTINATION ${PALLIX_CMAKE_DIR}
    COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/PallixRuntimeConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/PallixRuntimeConfig.cmake
    INSTALL_DESTINATION ${PALLIX_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/PallixRuntimeConfigVersion.cmake
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/PallixRuntimeConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/PallixRuntimeConfigVersion.cmake
    DESTINATION ${PALLIX_CMAKE_DIR}
    COMPONENT development)

configure_file(${CMAKE_CURRENT_LIST_DIR}/PallixRuntime.pc.in
    ${CMAKE_CURRENT_BINARY_DIR}/PallixRuntime.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/PallixRuntime.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(PALLIX_BUILD_TOOLS)
    install(TARGETS pallix RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/samples/
        DESTINATION ${CMAKE_INSTALL_DATADIR}/PallixRuntime/samples COMPONENT tools)
endif()

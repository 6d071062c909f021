# Installation and the Debian package. Included by source/CMakeLists.txt once the target zorvandebug exists.
include(CMakePackageConfigHelpers)

set(zorvan_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZorvanDebug)
set(zorvan_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS zorvandebug EXPORT ZorvanDebugTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)
# What the library starts by itself: nobody's command.
install(TARGETS zorvan-messagebox DESTINATION ${CMAKE_INSTALL_LIBDIR}/zorvandebug COMPONENT Runtime)
install(EXPORT ZorvanDebugTargets NAMESPACE Zorvan:: DESTINATION ${zorvan_cmake_dir} COMPONENT Development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZorvanDebugConfig.cmake.in
    ${PROJECT_BINARY_DIR}/ZorvanDebugConfig.cmake
    INSTALL_DESTINATION ${zorvan_cmake_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZorvanDebugConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZorvanDebugConfig.cmake ${PROJECT_BINARY_DIR}/ZorvanDebugConfigVersion.cmake
    DESTINATION ${zorvan_cmake_dir} COMPONENT Development)

# pkg-config finds the prefix from where the file lies, so that an installation may be moved.
file(RELATIVE_PATH zorvan_prefix_from_pc
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH zorvan_libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH zorvan_includedir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(${PROJECT_SOURCE_DIR}/cmake/zorvandebug.pc.in ${PROJECT_BINARY_DIR}/zorvandebug.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zorvandebug.pc DESTINATION ${zorvan_pkgconfig_dir} COMPONENT Development)

if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()

# One package with everything: "cpack -G DEB" in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zorvandebug)
set(CPACK_PACKAGE_VENDOR Zorvan)
set(CPACK_PACKAGE_CONTACT "Zorvan developers")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_NAME libzorvandebug${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_PROVIDES libzorvandebug-dev)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qtbase5-dev (>= 5.15)")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
find_program(ZORVAN_DPKG_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(ZORVAN_DPKG_SHLIBDEPS)
if(ZORVAN_DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
    set(CPACK_DEBIAN_PACKAGE_DEPENDS 
        "libc6, libstdc++6, libqt5core5a (>= 5.15), libqt5gui5 (>= 5.15), libqt5network5 (>= 5.15), libqt5widgets5 (>= 5.15)")
endif()
include(CPack)

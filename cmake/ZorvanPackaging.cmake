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

set(zorvan_qt_components_text "Core Network Widgets")
if(ZORVAN_QT EQUAL 6)
    string(APPEND zorvan_qt_components_text " Core5Compat")
endif()
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZorvanDebugConfig.cmake.in
    ${PROJECT_BINARY_DIR}/ZorvanDebugConfig.cmake
    INSTALL_DESTINATION ${zorvan_cmake_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZorvanDebugConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZorvanDebugConfig.cmake ${PROJECT_BINARY_DIR}/ZorvanDebugConfigVersion.cmake
    DESTINATION ${zorvan_cmake_dir} COMPONENT Development)

set(zorvan_qt_private ${zorvan_qt_components})
list(REMOVE_ITEM zorvan_qt_private Core)
list(TRANSFORM zorvan_qt_private REPLACE "(.+)" "Qt${ZORVAN_QT}\\1 >= ${zorvan_qt_minimum}")
list(JOIN zorvan_qt_private ", " zorvan_qt_private)
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

# "cpack -G DEB" in the build folder, or "cmake --workflow --preset package": the library for those who run programs,
# and the headers and the rest for those who build them.
# A library for Qt 6 has the same files and other types in its interface: packages of its own, in place of the others.
set(zorvan_runtime_package libzorvandebug${PROJECT_VERSION_MAJOR})
set(zorvan_development_package libzorvandebug-dev)
if(ZORVAN_QT EQUAL 5)
    set(zorvan_qt_dev qtbase5-dev)
    set(zorvan_qt_packages "libqt5core5a, libqt5gui5, libqt5network5, libqt5widgets5")
else()
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONFLICTS ${zorvan_runtime_package})
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_CONFLICTS ${zorvan_development_package})
    string(APPEND zorvan_runtime_package -qt6)
    set(zorvan_development_package libzorvandebug-qt6-dev)
    set(zorvan_qt_dev qt6-base-dev)
    set(zorvan_qt_packages "libqt6core6, libqt6core5compat6, libqt6gui6, libqt6network6, libqt6widgets6")
endif()
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${zorvan_runtime_package} COMPONENT Runtime)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${zorvan_development_package} COMPONENT Development
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "mainpage.md" EXCLUDE)
set(ZORVAN_PACKAGE_CONTACT "Zorvan developers" CACHE STRING "Maintainer of the Debian packages: Name <address>")
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_PACKAGE_NAME zorvandebug)
set(CPACK_PACKAGE_VENDOR Zorvan)
set(CPACK_PACKAGE_CONTACT "${ZORVAN_PACKAGE_CONTACT}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${zorvan_runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}, shared library
Filtered and classified output of an instrument's firmware, message boxes,
windows, remote access and an analysis of memory and times.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${zorvan_development_package})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${zorvan_runtime_package} (= ${PROJECT_VERSION}), ${zorvan_qt_dev} (>= ${zorvan_qt_minimum})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION}, development files
Headers, the files for CMake and pkg-config, and the guide to embedding.")
# What was linked against one version runs with later ones of the same SOVERSION.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The loader's cache is brought up to date once for all packages of an installation.
file(WRITE ${PROJECT_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/triggers)
find_program(ZORVAN_DPKG_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(ZORVAN_DPKG_SHLIBDEPS)
if(ZORVAN_DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
else()
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libc6, libstdc++6, ${zorvan_qt_packages}")
endif()
include(CPack)

# Tests that install the library, as CMake does and as Debian's packages do, and build the hosts in this folder against
# the installation. Not registered in sanitizer builds: the foreign projects know nothing of sanitizers.
if(ZORVAN_SANITIZE)
    return()
endif()

set(consumer_dir ${CMAKE_CURRENT_BINARY_DIR}/consumer)
set(consumer_script ${CMAKE_COMMAND}
    -D BUILD=${PROJECT_BINARY_DIR} -D CONFIG=$<CONFIG> -D SOURCE=${CMAKE_CURRENT_LIST_DIR} -D WORK=${consumer_dir}
    -D ROOT=${PROJECT_SOURCE_DIR} -D CPACK=${CMAKE_CPACK_COMMAND} -D VERSION=${PROJECT_VERSION} -D QT=${ZORVAN_QT}
    -D LIBDIR=${CMAKE_INSTALL_LIBDIR} -D GENERATOR=${CMAKE_GENERATOR} -D MAKE_PROGRAM=${CMAKE_MAKE_PROGRAM}
    -D COMPILER=${CMAKE_CXX_COMPILER} -D C_COMPILER=${CMAKE_C_COMPILER} -D QT_DIR=${Qt${ZORVAN_QT}_DIR})

# consumer_test(STEP PROPERTY VALUE): a step of run.cmake, and what it is to others.
function(consumer_test step property value)
    add_test(NAME consumer.${step}
        COMMAND ${consumer_script} -D STEP=${step} -P ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/run.cmake)
    set_tests_properties(consumer.${step} PROPERTIES TIMEOUT 120 ${property} ${value})
endfunction()

consumer_test(subdirectory LABELS consumer)
consumer_test(install FIXTURES_SETUP installed_library)
foreach(step find_package pkgconfig c_find_package c_pkgconfig)
    consumer_test(${step} FIXTURES_REQUIRED installed_library)
endforeach()

find_program(ZORVAN_DPKG_DEB dpkg-deb)
mark_as_advanced(ZORVAN_DPKG_DEB)
if(ZORVAN_DPKG_DEB AND ZORVAN_DPKG_SHLIBDEPS)
    consumer_test(deb FIXTURES_SETUP unpacked_library)
    foreach(step deb_find_package deb_c_find_package)
        consumer_test(${step} FIXTURES_REQUIRED unpacked_library)
    endforeach()
endif()

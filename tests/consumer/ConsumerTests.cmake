# Tests that install the library and build the host in this folder against the installation. Not registered in
# sanitizer builds: the foreign project knows nothing of sanitizers.
if(ZORVAN_SANITIZE)
    return()
endif()

set(consumer_dir ${CMAKE_CURRENT_BINARY_DIR}/consumer)
set(consumer_script ${CMAKE_COMMAND}
    -D BUILD=${PROJECT_BINARY_DIR} -D CONFIG=$<CONFIG> -D SOURCE=${CMAKE_CURRENT_LIST_DIR} -D WORK=${consumer_dir}
    -D LIBDIR=${CMAKE_INSTALL_LIBDIR} -D GENERATOR=${CMAKE_GENERATOR} -D MAKE_PROGRAM=${CMAKE_MAKE_PROGRAM}
    -D COMPILER=${CMAKE_CXX_COMPILER} -D QT_DIR=${Qt5_DIR})

foreach(step install find_package pkgconfig)
    add_test(NAME consumer.${step} COMMAND ${consumer_script} -D STEP=${step} -P ${CMAKE_CURRENT_LIST_DIR}/run.cmake)
    set_tests_properties(consumer.${step} PROPERTIES TIMEOUT 120)
endforeach()
set_tests_properties(consumer.install PROPERTIES FIXTURES_SETUP installed_library)
set_tests_properties(consumer.find_package consumer.pkgconfig PROPERTIES FIXTURES_REQUIRED installed_library)

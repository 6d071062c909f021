# Tests of everything above the platform layer. Each case of a test program is a CTest case and a process of its own:
# the facade's state is process-wide, and some of it is read once.

include(GoogleTest)
find_package(GTest REQUIRED)

add_library(zorvan_testsupport STATIC
    support/childprocess.cpp support/main.cpp support/maphost.cpp support/programdata.cpp)
target_include_directories(zorvan_testsupport PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(zorvan_testsupport PUBLIC zorvan_warnings GTest::gtest Qt${ZORVAN_QT}::Core)
set_target_properties(zorvan_testsupport PROPERTIES POSITION_INDEPENDENT_CODE ON)
zorvan_precompile(tests zorvan_testsupport)

# zorvan_add_test(KIND NAME [INTERNALS] [LABELS label] SOURCES file... [DEPENDS target...])
# Makes the program KIND_NAME and the CTest cases "KIND.<suite>.<case>". Without INTERNALS it uses the shared library
# as hosts do; with it, the library's objects and hidden symbols.
# The target tests_KIND builds all programs of a kind.
function(zorvan_add_test kind name)
    cmake_parse_arguments(arg "INTERNALS" "LABELS" "SOURCES;DEPENDS" ${ARGN})
    set(target test_${kind}_${name})
    add_executable(${target} ${arg_SOURCES})
    target_link_libraries(${target} PRIVATE zorvan_testsupport)
    zorvan_precompile(tests ${target})
    if(NOT TARGET tests_${kind})
        add_custom_target(tests_${kind})
    endif()
    add_dependencies(tests_${kind} ${target})
    if(arg_INTERNALS)
        target_link_libraries(${target} PRIVATE zorvan_testing)
    else()
        target_link_libraries(${target} PRIVATE Zorvan::debug)
    endif()
    if(NOT arg_LABELS)
        set(arg_LABELS ${kind}) # one label: discovery does not keep a list together
    endif()
    if(arg_DEPENDS)
        add_dependencies(${target} ${arg_DEPENDS})
    endif()
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${kind}."
        PROPERTIES TIMEOUT 120 LABELS ${arg_LABELS})
endfunction()

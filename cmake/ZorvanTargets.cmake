# What every target of the project shares, and the functions that make the folders of source/ into targets.

include(CheckLinkerFlag)
find_package(Threads REQUIRED)

# Lengths of Qt's texts and lists are int in Qt 5 and wider in Qt 6. The sources count with int, as no text here comes
# near its limit; -Wconversion guards them in builds with Qt 5.
add_library(zorvan_warnings INTERFACE)
target_compile_features(zorvan_warnings INTERFACE cxx_std_17)
target_compile_options(zorvan_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual
    -Wconversion -Wno-sign-conversion -Wdouble-promotion -Wformat=2
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Wthread-safety-beta -Wno-gnu-zero-variadic-macro-arguments>
    $<$<EQUAL:${ZORVAN_QT},6>:-Wno-conversion -Wfloat-conversion>
    $<$<BOOL:${ZORVAN_WERROR}>:-Werror>)
target_compile_definitions(zorvan_warnings INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS
    QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_DISABLE_DEPRECATED_BEFORE=0x050E00)
target_include_directories(zorvan_warnings INTERFACE
    ${PROJECT_SOURCE_DIR}/source ${PROJECT_SOURCE_DIR}/source/debug/include ${PROJECT_BINARY_DIR}/include)
target_link_libraries(zorvan_warnings INTERFACE Threads::Threads)
if(ZORVAN_BUILD_FUZZERS)
    # The whole library: the fuzzer follows the paths through it, the sanitizers watch them.
    target_compile_options(zorvan_warnings INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
    target_link_options(zorvan_warnings INTERFACE -fsanitize=address,undefined)
endif()
# Tests, examples and whatever else is not the library. In builds with the address sanitizer it is compiled without
# optimisation: that takes less than half the time, and the programs run about as long.
define_property(TARGET PROPERTY ZORVAN_HOST_CODE INITIALIZE_FROM_VARIABLE ZORVAN_HOST_CODE)
if(ZORVAN_SANITIZE)
    # -O1 -g1: compiles twice as fast, and the reports still name every function and line.
    # GCC 12 takes what the sanitizers add to std::regex for uses of uninitialised variables.
    set(zorvan_optimisation -O1)
    if(ZORVAN_SANITIZE MATCHES "address")
        set(zorvan_optimisation $<IF:$<BOOL:$<TARGET_PROPERTY:ZORVAN_HOST_CODE>>,-O0,-O1>)
    endif()
    target_compile_options(zorvan_warnings INTERFACE
        ${zorvan_optimisation} -g1 -fsanitize=${ZORVAN_SANITIZE} -fno-omit-frame-pointer
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(zorvan_warnings INTERFACE -fsanitize=${ZORVAN_SANITIZE})
endif()

# Most test programs hold the whole library: a fast linker saves a second for each. The library is linked as ever.
if((ZORVAN_BUILD_TESTS OR ZORVAN_BUILD_FUZZERS) AND NOT CMAKE_CROSSCOMPILING)
    foreach(linker lld gold)
        check_linker_flag(CXX -fuse-ld=${linker} zorvan_links_with_${linker})
        if(zorvan_links_with_${linker})
            target_link_options(zorvan_warnings INTERFACE
                $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-fuse-ld=${linker}>)
            break()
        endif()
    endforeach()
endif()

# zorvan_add_room(FOLDER [WIDGETS] SOURCES...): one folder of source/ as the OBJECT library zorvan_FOLDER. Objects, not
# an archive: an archive would drop the files that only have static initialisers. WIDGETS: the folder has windows or
# meta-objects of its own.
function(zorvan_add_room folder)
    cmake_parse_arguments(PARSE_ARGV 1 arg "WIDGETS" "" "")
    add_library(zorvan_${folder} OBJECT ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(zorvan_${folder} PRIVATE zorvan_warnings)
    if(NOT ZORVAN_PLATFORM_ONLY)
        target_link_libraries(zorvan_${folder} PRIVATE Qt${ZORVAN_QT}::Core ${zorvan_qt_compatibility})
        target_compile_definitions(zorvan_${folder} PRIVATE zorvandebug_EXPORTS)
    endif()
    if(arg_WIDGETS)
        target_link_libraries(zorvan_${folder} PRIVATE Qt${ZORVAN_QT}::Widgets)
        set_target_properties(zorvan_${folder} PROPERTIES AUTOMOC ON)
    endif()
    set_target_properties(zorvan_${folder} PROPERTIES
        POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    if(NOT ZORVAN_PLATFORM_ONLY)
        zorvan_precompile(library zorvan_${folder})
    endif()
endfunction()

# What every target of the project shares, and the functions that make the folders of source/ into targets.

find_package(Threads REQUIRED)

add_library(zorvan_warnings INTERFACE)
target_compile_features(zorvan_warnings INTERFACE cxx_std_17)
target_compile_options(zorvan_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual
    -Wconversion -Wno-sign-conversion -Wdouble-promotion -Wformat=2
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Wthread-safety-beta -Wno-gnu-zero-variadic-macro-arguments>
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
if(ZORVAN_SANITIZE)
    # -O1 -g1: compiles twice as fast, and the reports still name every function and line.
    # GCC 12 takes what the sanitizers add to std::regex for uses of uninitialised variables.
    target_compile_options(zorvan_warnings INTERFACE -O1 -g1 -fsanitize=${ZORVAN_SANITIZE} -fno-omit-frame-pointer
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(zorvan_warnings INTERFACE -fsanitize=${ZORVAN_SANITIZE})
endif()

# zorvan_add_room(FOLDER [WIDGETS] SOURCES...): one folder of source/ as the OBJECT library zorvan_FOLDER. Objects, not
# an archive: an archive would drop the files that only have static initialisers. WIDGETS: the folder has windows or
# meta-objects of its own.
function(zorvan_add_room folder)
    cmake_parse_arguments(PARSE_ARGV 1 arg "WIDGETS" "" "")
    add_library(zorvan_${folder} OBJECT ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(zorvan_${folder} PRIVATE zorvan_warnings)
    if(NOT ZORVAN_PLATFORM_ONLY)
        target_link_libraries(zorvan_${folder} PRIVATE Qt5::Core)
        target_compile_definitions(zorvan_${folder} PRIVATE zorvandebug_EXPORTS)
    endif()
    if(arg_WIDGETS)
        target_link_libraries(zorvan_${folder} PRIVATE Qt5::Widgets)
        set_target_properties(zorvan_${folder} PROPERTIES AUTOMOC ON)
    endif()
    set_target_properties(zorvan_${folder} PROPERTIES
        POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

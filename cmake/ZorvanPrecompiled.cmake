# Qt's headers, compiled once: parsing them is most of the time of a build. The build with Clang, and those of everybody
# who does not ask for it, do without: there each file has to include what it uses.
#
#   zorvan_precompile(KIND target...)    KIND: library (the rooms), hosts (programs that use it), tests

# Few: a file waits for all of them to be loaded.
set(zorvan_precompiled_library
    <QApplication> <QObject> <QPointer> <QString> <QStringList>
    <algorithm> <array> <atomic> <chrono> <functional> <map> <memory> <mutex> <optional> <string> <thread> <vector>)
set(zorvan_precompiled_hosts ${zorvan_precompiled_library})
set(zorvan_precompiled_tests ${zorvan_precompiled_library} <gtest/gtest.h>)

# -fPIC: Qt 6 leaves programs another mode, which would ask for headers of its own. -fpch-preprocess: for ccache.
set(zorvan_precompiled_options -fPIC $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)

# A target that is compiled like those that share its headers. Only the folders of Qt's modules, not their macros: a
# header that was compiled with a macro is of no use without it.
function(zorvan_add_precompiled kind)
    set(carrier zorvan_precompiled_${kind})
    set(empty ${PROJECT_BINARY_DIR}/${carrier}.cpp)
    file(CONFIGURE OUTPUT ${empty} CONTENT "")
    add_library(${carrier} OBJECT ${empty})
    target_link_libraries(${carrier} PRIVATE zorvan_warnings Qt${ZORVAN_QT}::Core)
    foreach(module Gui Widgets)
        target_include_directories(${carrier} SYSTEM PRIVATE
            $<TARGET_PROPERTY:Qt${ZORVAN_QT}::${module},INTERFACE_INCLUDE_DIRECTORIES>)
    endforeach()
    if(kind STREQUAL tests)
        target_link_libraries(${carrier} PRIVATE GTest::gtest)
    elseif(kind STREQUAL library)
        set_target_properties(${carrier} PROPERTIES
            POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    endif()
    list(TRANSFORM ${carrier} REPLACE ".+" "$<$<COMPILE_LANGUAGE:CXX>:\\0>" OUTPUT_VARIABLE headers)
    target_precompile_headers(${carrier} PRIVATE ${headers})
    target_compile_options(${carrier} PRIVATE ${zorvan_precompiled_options})
endfunction()

function(zorvan_precompile kind)
    if(NOT ZORVAN_PRECOMPILE)
        return()
    endif()
    if(NOT TARGET zorvan_precompiled_${kind})
        zorvan_add_precompiled(${kind})
    endif()
    foreach(target ${ARGN})
        target_precompile_headers(${target} REUSE_FROM zorvan_precompiled_${kind})
        target_compile_options(${target} PRIVATE ${zorvan_precompiled_options})
    endforeach()
endfunction()

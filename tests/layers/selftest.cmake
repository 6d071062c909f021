# Plants a small tree with one violation of each kind and expects the check to name exactly these.
#
#   cmake -D CHECK=<CheckLayers.cmake> -D TREE=<folder to make> -P selftest.cmake
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${TREE})

# Allowed: one's own folder, lower folders, public headers, Qt, the standard library; anything in a comment.
file(WRITE ${TREE}/source/host/settings.h "#pragma once\n\n#include \"platform/files.h\"\n#include <zorvan/debug.h>\n")
file(WRITE ${TREE}/source/host/settings_p.h "#include <QString>\n")
file(WRITE ${TREE}/source/host/settings.cpp
    "// [oddities]; \\ in front must not shift the count\n#include \"settings.h\"\n#include \"settings_p.h\"\n\n"
    "#include \"host/settings_p.h\"\n#include <vector>\n// #include \"debug/outputpath.h\"\n")
file(WRITE ${TREE}/source/platform/files.h "#include <cstdio>\n#include <unistd.h>\n")
file(WRITE ${TREE}/source/debug/outputpath.h "#include \"lowlevelfunctions/log.h\"\n")
file(WRITE ${TREE}/source/lowlevelfunctions/log.h "#include \"host/settings.h\"\n")
file(WRITE ${TREE}/source/debug/include/zorvan/debug.h "#include <zorvan/export.h>\n\n#include <QString>\n")

function(check)
    execute_process(COMMAND ${CMAKE_COMMAND} -D ROOT=${TREE} -P ${CHECK}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    set(result "${result}" PARENT_SCOPE)
    set(output "${output}" PARENT_SCOPE)
endfunction()

check()
if(NOT result EQUAL 0)
    message(FATAL_ERROR "A tree in good order was refused:\n${output}")
endif()

set(expected)
function(plant file line include)
    set(text)
    foreach(i RANGE 2 ${line})
        string(APPEND text "\n")
    endforeach()
    file(WRITE ${TREE}/source/${file} "${text}#include ${include}\n")
    set(expected ${expected} "source/${file}:${line}:" PARENT_SCOPE)
endfunction()

plant(host/upward.cpp 4 "\"debug/outputpath.h\"")
plant(lowlevelfunctions/private.cpp 2 "\"host/settings_p.h\"")
plant(debug/sideways.cpp 3 "\"../host/settings.h\"")
plant(debug/missing.cpp 2 "\"settings.h\"")
plant(debug/unknown.cpp 2 "\"tests/support.h\"")
plant(debug/angle.cpp 5 "<host/settings.h>")
plant(debug/system.cpp 2 "<sys/stat.h>")
plant(platform/qt.cpp 2 "<QString>")
plant(platform/facade.cpp 2 "<zorvan/debug.h>")
plant(messageboxprogram/library.cpp 2 "<zorvan/debug.h>")
plant(messageboxprogram/folder.cpp 3 "\"platform/files.h\"")
plant(debug/include/zorvan/exports.h 6 "\"debug/outputpath.h\"")
file(WRITE ${TREE}/source/attic/old.cpp "\n")
list(APPEND expected "source/attic/old.cpp:1:")

check()
if(result EQUAL 0)
    message(FATAL_ERROR "A tree with violations passed:\n${output}")
endif()
foreach(place IN LISTS expected)
    string(FIND "${output}" "${place}" found)
    if(found EQUAL -1)
        message(FATAL_ERROR "${place} was not reported:\n${output}")
    endif()
endforeach()
list(LENGTH expected expected_count)
string(REGEX MATCHALL "source/[^\n]*:[0-9]+:" reported "${output}")
list(LENGTH reported reported_count)
if(NOT reported_count EQUAL expected_count)
    message(FATAL_ERROR "${reported_count} reports instead of ${expected_count}:\n${output}")
endif()

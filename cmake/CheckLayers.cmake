# Checks who includes whom in source/: a folder includes itself and folders of lower rank, never upwards.
#
#   cmake -D ROOT=<folder that holds source/> -P CheckLayers.cmake
#
# Names every violation as file:line and fails if there is one. The ranks, low to high:
cmake_minimum_required(VERSION 3.25)
set(folders platform host lowlevelfunctions leakanalyzer settingsdialog debugwindow debugserverqueue debug)

# Programs of their own: no part of the library, they include only themselves, Qt and the standard library.
set(programs messageboxprogram)

# The public headers lie below all of them: any folder but platform may include <zorvan/...>, and the headers
# themselves include nothing of the project but each other. platform is free of Qt and of the public headers, and
# it alone talks to the operating system.
set(public_headers source/debug/include/zorvan)
set(c_headers stdarg.h stdbool.h stddef.h stdint.h)

set(violations 0)
function(violation where text)
    message(NOTICE "${where}: ${text}")
    math(EXPR violations "${violations} + 1")
    set(violations ${violations} PARENT_SCOPE)
endfunction()

# check_angle(WHERE FOLDER NAME): #include <NAME>
macro(check_angle where folder name)
    string(REGEX REPLACE "/.*" "" first "${name}")
    if("${name}" MATCHES "^zorvan/" OR "${name}" MATCHES "^Q")
        if("${folder}" STREQUAL "platform")
            violation("${where}" "platform includes <${name}>: it knows neither Qt nor the public headers")
        elseif("${folder}" IN_LIST programs AND "${name}" MATCHES "^zorvan/")
            violation("${where}" "${folder} includes <${name}>: a program of its own knows nothing of the library")
        endif()
    elseif(first IN_LIST folders)
        violation("${where}" "<${name}> is a file of the project: write \"${name}\"")
    elseif("${name}" MATCHES "[./]" AND NOT "${folder}" STREQUAL "platform" AND NOT "${name}" IN_LIST c_headers)
        violation("${where}" "${folder} includes <${name}>: the operating system belongs to platform")
    endif()
endmacro()

# check_quoted(WHERE FOLDER NAME): #include "NAME"
macro(check_quoted where folder name)
    string(REGEX REPLACE "/.*" "" first "${name}")
    list(FIND folders "${folder}" own_rank)
    list(FIND folders "${first}" other_rank)
    if("${folder}" STREQUAL "public")
        violation("${where}" "a public header includes \"${name}\": only <zorvan/...>, Qt and the standard library")
    elseif("${name}" MATCHES "(^|/)\\.\\.?(/|$)")
        violation("${where}" "\"${name}\" leaves its folder sideways: name the folder")
    elseif(NOT "${name}" MATCHES "/")
        if(NOT "${name}" MATCHES "^(moc_|ui_)|\\.moc$" AND NOT EXISTS "${ROOT}/source/${folder}/${name}")
            violation("${where}" "${folder} has no file \"${name}\"")
        endif()
    elseif("${folder}" IN_LIST programs)
        violation("${where}" "${folder} includes \"${name}\": a program of its own knows nothing of the library")
    elseif(other_rank EQUAL -1)
        violation("${where}" "\"${name}\" is in no folder with a rank")
    elseif(other_rank GREATER own_rank)
        violation("${where}" "${folder} includes \"${name}\" of a higher folder")
    elseif(NOT other_rank EQUAL own_rank AND "${name}" MATCHES "_p\\.(h|hpp)$")
        violation("${where}" "\"${name}\" is private to ${first}")
    endif()
endmacro()

file(GLOB_RECURSE sources RELATIVE ${ROOT} ${ROOT}/source/*.h ${ROOT}/source/*.hpp ${ROOT}/source/*.c ${ROOT}/source/*.cpp)
if(NOT sources)
    message(FATAL_ERROR "no source files below ${ROOT}/source")
endif()

foreach(source IN LISTS sources)
    string(REGEX REPLACE "^source/([^/]*).*" "\\1" folder "${source}")
    if(source MATCHES "^${public_headers}/")
        set(folder public)
    elseif(NOT folder IN_LIST folders AND NOT folder IN_LIST programs)
        violation("${source}:1" "the folder ${folder} has no rank")
        continue()
    endif()

    # A line per list element; characters that mean something in CMake lists are of no interest here.
    file(READ "${ROOT}/${source}" text)
    string(REGEX REPLACE "[][;\\]" " " text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    set(number 0)
    foreach(line IN LISTS lines)
        math(EXPR number "${number} + 1")
        if(line MATCHES "^[ \t]*#[ \t]*include[ \t]*<([^>]*)>")
            check_angle("${source}:${number}" "${folder}" "${CMAKE_MATCH_1}")
        elseif(line MATCHES "^[ \t]*#[ \t]*include[ \t]*\"([^\"]*)\"")
            check_quoted("${source}:${number}" "${folder}" "${CMAKE_MATCH_1}")
        endif()
    endforeach()
endforeach()

list(LENGTH sources source_count)
if(violations GREATER 0)
    message(FATAL_ERROR "${violations} includes break the order of the folders")
endif()
message(NOTICE "${source_count} files keep the order of the folders")

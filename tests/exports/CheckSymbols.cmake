# Compares the names that the shared library exports with a list, and names every difference.
#
#   cmake -D NM=<nm> -D LIBRARY=<shared library> -D NODE=<version of the names> -D LIST=<symbols.txt>
#         -P CheckSymbols.cmake
#
# With -D WRITE=1 the list is written anew. It has the names without their version.
cmake_minimum_required(VERSION 3.25)

# --format=posix: name, type, address. What is weak is in the library as well as in its hosts: virtual tables and type
# informations of the interfaces, and functions of theirs that the compiler did not put in line.
execute_process(COMMAND ${NM} --dynamic --defined-only --demangle --format=posix ${LIBRARY}
    OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," lines "${lines}")
string(REGEX MATCHALL "[^\n]+" lines "${lines}")
# Local symbols, which the linker may leave in the table, are nobody's to use.
list(FILTER lines EXCLUDE REGEX " [abdrst] [0-9a-f]+( [0-9a-f]*)?$")
list(TRANSFORM lines REPLACE " [A-Za-z] [0-9a-f]+( [0-9a-f]*)?$" "")
list(TRANSFORM lines REPLACE "@@${NODE}$" "")
list(REMOVE_ITEM lines ${NODE} ${NODE}@@${NODE})
list(SORT lines)
list(REMOVE_DUPLICATES lines)

if(WRITE)
    list(JOIN lines "\n" text)
    file(WRITE ${LIST} "${text}\n")
    return()
endif()

file(STRINGS ${LIST} wanted)
set(new ${lines})
list(REMOVE_ITEM new ${wanted})
set(missing ${wanted})
list(REMOVE_ITEM missing ${lines})
foreach(name IN LISTS new)
    message(NOTICE "exported, but not in the list: ${name}")
endforeach()
foreach(name IN LISTS missing)
    message(NOTICE "in the list, but not exported: ${name}")
endforeach()
if(new OR missing)
    message(FATAL_ERROR "the exported names are not those of ${LIST}")
endif()

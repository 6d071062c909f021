# The steps of the consumer tests; ConsumerTests.cmake says what is passed in.
cmake_minimum_required(VERSION 3.25)
set(prefix "${WORK}/prefix")

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "failed (${result}): ${command}\n${output}")
    endif()
endfunction()

# Runs the host with a data folder of its own and compares what it prints.
function(expect_output program)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env "ZORVAN_PROGRAMDATA=${WORK}/${STEP}-data"
            "LD_LIBRARY_PATH=${prefix}/${LIBDIR}" "${program}"
        WORKING_DIRECTORY "${WORK}/${STEP}"
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    file(READ "${SOURCE}/expected-output.txt" expected)
    if(NOT result EQUAL 0 OR NOT output STREQUAL expected OR NOT errors STREQUAL "")
        message(NOTICE "printed:\n${output}\nexpected:\n${expected}\nerrors:\n${errors}")
        message(FATAL_ERROR "the host's output is not the expected one; exit code ${result}")
    endif()
endfunction()

if(STEP STREQUAL "install")
    file(REMOVE_RECURSE "${WORK}")
    file(MAKE_DIRECTORY "${WORK}")
    run(${CMAKE_COMMAND} --install "${BUILD}" --config "${CONFIG}" --prefix "${prefix}")
elseif(STEP STREQUAL "find_package")
    file(REMOVE_RECURSE "${WORK}/${STEP}")
    run(${CMAKE_COMMAND} -S "${SOURCE}" -B "${WORK}/${STEP}" -G "${GENERATOR}" "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}"
        "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_PREFIX_PATH=${prefix}" "-DQt5_DIR=${QT_DIR}")
    run(${CMAKE_COMMAND} --build "${WORK}/${STEP}")
    expect_output("${WORK}/${STEP}/consumer")
elseif(STEP STREQUAL "pkgconfig")
    file(REMOVE_RECURSE "${WORK}/${STEP}")
    file(MAKE_DIRECTORY "${WORK}/${STEP}")
    execute_process(COMMAND ${CMAKE_COMMAND} -E env "PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig"
            pkg-config --cflags --libs zorvandebug
        RESULT_VARIABLE result OUTPUT_VARIABLE flags ERROR_VARIABLE errors OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "pkg-config does not know zorvandebug: ${result} ${errors}")
    endif()
    separate_arguments(flags UNIX_COMMAND "${flags}")
    run("${COMPILER}" "${SOURCE}/main.cpp" -o "${WORK}/${STEP}/consumer" ${flags})
    expect_output("${WORK}/${STEP}/consumer")
else()
    message(FATAL_ERROR "unknown step \"${STEP}\"")
endif()

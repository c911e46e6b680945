# SPDX-License-Identifier: MIT
# Installs the build, builds examples/minimal_host against nothing but the installed tree, and runs it and ddphost.
function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGV " " command)
        message(FATAL_ERROR "'${command}' ended with ${result}:\n${output}")
    endif()
    set(OUTPUT "${output}" PARENT_SCOPE)
endfunction()

function(expect text)
    string(FIND "${OUTPUT}" "${text}" found)
    if(found EQUAL -1)
        message(FATAL_ERROR "'${text}' is missing in:\n${OUTPUT}")
    endif()
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")
run("${CMAKE_COMMAND}" -S "${prefix}/share/doc/openfoam-data-provider/examples/minimal_host" -B "${WORK_DIR}/host"
    -G "${GENERATOR}" -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX_COMPILER})
run("${CMAKE_COMMAND}" --build "${WORK_DIR}/host")

set(case "${prefix}/share/doc/openfoam-data-provider/examples/cavity/case.foam")
run("${WORK_DIR}/host/minimal_host" "${prefix}/${LIBDIR}/openfoam-data-provider/libOpenFoamPlugin.so" "${case}")
expect("part 1: default_region")
expect("movingWall")

# The prefix is known only since the installation.
file(READ "${prefix}/${LIBDIR}/pkgconfig/openfoam-data-provider.pc" OUTPUT)
expect("prefix=${prefix}\n")

run("${prefix}/bin/ddphost" info "${case}")
expect("default_region")

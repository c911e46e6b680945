# SPDX-License-Identifier: MIT
# Makes the Debian package from another folder: it must name the libraries it needs, and nothing may be written there.
find_program(SHLIBDEPS dpkg-shlibdeps)
find_program(FILE_TOOL file)
if(NOT SHLIBDEPS OR NOT FILE_TOOL)
    message("skipped: making the package needs dpkg-dev and file")
    return()
endif()

set(elsewhere "${WORK_DIR}/elsewhere")
file(REMOVE_RECURSE "${elsewhere}" "${BUILD_DIR}/package")
file(MAKE_DIRECTORY "${elsewhere}")
execute_process(COMMAND "${CPACK}" --config "${BUILD_DIR}/CPackConfig.cmake" WORKING_DIRECTORY "${elsewhere}"
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
file(GLOB packages "${BUILD_DIR}/package/*.deb")
file(GLOB strays "${elsewhere}/*")
list(LENGTH packages count)
if(NOT result EQUAL 0 OR NOT count EQUAL 1 OR strays)
    message(FATAL_ERROR "cpack ended with ${result}, made '${packages}' and left '${strays}':\n${output}")
endif()
execute_process(COMMAND dpkg-deb --field "${packages}" Depends OUTPUT_VARIABLE depends COMMAND_ERROR_IS_FATAL ANY)
foreach(library libc6 libtbb12 zlib1g)
    if(NOT depends MATCHES "${library} ")
        message(FATAL_ERROR "the package does not depend on ${library} but on: ${depends}")
    endif()
endforeach()

# As on a machine that lacks both tools.
execute_process(
    COMMAND "${CMAKE_COMMAND}" -E env "PATH=${elsewhere}" "${CPACK}" --config "${BUILD_DIR}/CPackConfig.cmake"
            -B "${WORK_DIR}/bare" -D CMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
file(GLOB packages "${WORK_DIR}/bare/*.deb")
if(result EQUAL 0 OR packages OR NOT output MATCHES "apt-get install --no-install-recommends file dpkg-dev")
    message(FATAL_ERROR "without its tools cpack ended with ${result} and made '${packages}':\n${output}")
endif()

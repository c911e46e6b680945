# SPDX-License-Identifier: MIT
# Runs before CPack makes the package. Without dpkg-shlibdeps CPack would make one that depends on nothing, and only
# mention that; without `file` it fails without naming the package to install.
set(missing "")
foreach(tool_and_package file:file dpkg-shlibdeps:dpkg-dev)
    string(REPLACE ":" ";" pair ${tool_and_package})
    list(GET pair 0 tool)
    list(GET pair 1 package)
    find_program(found ${tool} NO_CACHE)
    if(NOT found)
        string(APPEND missing " ${package}")
    endif()
    unset(found)
endforeach()
if(missing)
    # CMake does not wrap indented lines.
    message(FATAL_ERROR "the dependencies of the package cannot be computed; as root, run:\n"
                        "  apt-get install --no-install-recommends${missing}")
endif()

# SPDX-License-Identifier: MIT
# Runs after CPack has made the package. CPack computes dependencies only for files that `file` calls programs or
# libraries; if that goes wrong, the only sign is a package without dependencies, which installs anywhere and may not run.
execute_process(COMMAND dpkg-deb --field ${CPACK_PACKAGE_FILES} Depends OUTPUT_VARIABLE depends
                RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT depends MATCHES "libtbb")
    file(REMOVE ${CPACK_PACKAGE_FILES})
    message(FATAL_ERROR "the dependencies of the package could not be computed")
endif()

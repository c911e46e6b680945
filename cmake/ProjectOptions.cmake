# SPDX-License-Identifier: MIT
# Flags for every target of this tree. Hidden visibility and position independent code are global, because one object
# compiled without them would leak symbols from the plug-in; everything else is set on interface targets.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
# g++ 12 warns of overlapping copies inside its own std::string when a literal is prepended to one; g++ 13 does not.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(project_warnings INTERFACE -Wno-restrict)
endif()
# In a unity build g++ treats each source as a header, where an unnamed namespace would be a mistake.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_UNITY_BUILD)
    target_compile_options(project_warnings INTERFACE -Wno-subobject-linkage)
endif()
if(OFP_WARNINGS_AS_ERRORS)
    target_compile_options(project_warnings INTERFACE -Werror)
endif()

# Everything is built with the sanitizers; otherwise their run-time would see only half of the program.
if(OFP_SANITIZE)
    add_compile_options(-fsanitize=${OFP_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${OFP_SANITIZE})
    add_compile_definitions(_GLIBCXX_ASSERTIONS OFP_SANITIZED)
endif()

# The library lives in someone else's process and reads files it did not write, so an overrun must end in a clean stop.
# The sanitizers have their own checks, which these would hide.
add_library(project_hardening INTERFACE)
if(NOT OFP_SANITIZE)
    target_compile_options(
        project_hardening INTERFACE -fstack-protector-strong $<$<CONFIG:Release>:-U_FORTIFY_SOURCE>
                                    $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
    add_link_options(LINKER:-z,noexecstack)
endif()
if(OFP_COVERAGE)
    target_compile_options(project_hardening INTERFACE -fprofile-instr-generate -fcoverage-mapping)
    add_link_options(-fprofile-instr-generate)
endif()
# Only the library has the counters that guide libFuzzer; its main is linked to the fuzz targets.
if(OFP_FUZZ)
    target_compile_options(project_hardening INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Most of the time of a build is spent on library headers. Sources still include what they use.
function(precompile target)
    if(OFP_PRECOMPILE)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()

# For sources that run briefly but compile slowly: optimising them doubles the time of a test build.
function(compile_fast target)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Debug>:-O0>)
endfunction()

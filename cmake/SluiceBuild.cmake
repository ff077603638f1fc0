# SPDX-License-Identifier: Apache-2.0
# Flags shared by every target of the build: sluice_settings(<target>).

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()
# Line tables in every build: a user's back trace names lines, and profilers need them.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1 -DNDEBUG")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_program(SLUICE_CCACHE ccache)
if(SLUICE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${SLUICE_CCACHE}")
endif()

# What a program outside needs as well to load an instrumented library.
set(SLUICE_INSTRUMENT_FLAGS "")
if(SLUICE_SANITIZE)
    list(APPEND SLUICE_INSTRUMENT_FLAGS
        -fsanitize=${SLUICE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
endif()
if(SLUICE_COVERAGE)
    list(APPEND SLUICE_INSTRUMENT_FLAGS --coverage -fprofile-update=atomic)
endif()

function(sluice_settings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra ${SLUICE_INSTRUMENT_FLAGS})
    target_link_options(${target} PRIVATE ${SLUICE_INSTRUMENT_FLAGS})
    if(SLUICE_FUZZ)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
endfunction()

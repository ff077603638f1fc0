# SPDX-License-Identifier: Apache-2.0
# Installs the build into a folder, moves that folder, and uses it as a stranger would: the program,
# the manual page, the completion, and an outside project by find_package and by pkg-config.
#   cmake -D BUILD_DIR=.. -D SOURCE_DIR=.. -D WORK_DIR=.. -D CXX=.. -D CXX_FLAGS=..
#         -D GENERATOR=.. -D VERSION=.. -P install_test.cmake
cmake_minimum_required(VERSION 3.25)

unset(ENV{DESTDIR})
unset(ENV{LD_LIBRARY_PATH})
set(first "${WORK_DIR}/first")
set(prefix "${WORK_DIR}/moved")

# Runs a command, which must succeed; its standard output goes to `out`, errors to `err`.
macro(run)
    execute_process(COMMAND ${ARGV}
        RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "status ${result}: ${ARGV}\n${out}${err}")
    endif()
endmacro()

function(expect_match pattern text what)
    if(NOT text MATCHES "${pattern}")
        message(FATAL_ERROR "${what}: nothing like '${pattern}' in:\n${text}")
    endif()
endfunction()

function(install_and_move)
    file(REMOVE_RECURSE "${WORK_DIR}")
    run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${first}")
    file(RENAME "${first}" "${prefix}")
endfunction()

function(try_program)
    run("${prefix}/bin/sluice" --version)
    string(REPLACE "." "[.]" version "${VERSION}")
    expect_match("${version}" "${out}${err}" "sluice --version")
    run("${prefix}/bin/sluice" nodes)
    expect_match("(^|\n)Add[ \t]" "${out}" "sluice nodes")

    file(READ "${prefix}/share/man/man1/sluice.1" manual)
    expect_match("\\.TH SLUICE 1 .*${version}" "${manual}" "manual page")
    run(bash -n "${prefix}/share/bash-completion/completions/sluice")
    file(READ "${prefix}/share/bash-completion/completions/sluice" completion)
    expect_match("complete .*sluice" "${completion}" "bash completion")
    file(READ "${prefix}/share/zsh/site-functions/_sluice" completion)
    expect_match("#compdef sluice" "${completion}" "zsh completion")
endfunction()

# Every public header must be there: an outside file includes them all.
function(write_all_headers file)
    file(GLOB_RECURSE headers RELATIVE "${prefix}/include/sluicegraph"
        "${prefix}/include/sluicegraph/*.h")
    set(text "")
    foreach(header IN LISTS headers)
        string(APPEND text "#include \"${header}\"\n")
    endforeach()
    file(WRITE "${file}" "${text}")
endfunction()

function(try_outside_project name)
    set(folder "${WORK_DIR}/${name}")
    write_all_headers("${WORK_DIR}/all_headers.cpp")
    run("${CMAKE_COMMAND}" -S "${SOURCE_DIR}/tests/install/outside" -B "${folder}"
        -G "${GENERATOR}" -D "CMAKE_CXX_COMPILER=${CXX}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
        "-DEMBED_DIR=${SOURCE_DIR}/examples/embed"
        "-DALL_HEADERS=${WORK_DIR}/all_headers.cpp" ${ARGN})
    run("${CMAKE_COMMAND}" --build "${folder}")

    run("${folder}/quiet")
    if(NOT "${out}${err}" STREQUAL "")
        message(FATAL_ERROR "a program that only links the library printed:\n${out}${err}")
    endif()
    run("${folder}/embed")
    if(out STREQUAL "")
        message(FATAL_ERROR "${name}: the embedding example printed nothing")
    endif()
    set(output_${name} "${out}" PARENT_SCOPE)
endfunction()

install_and_move()
try_program()
try_outside_project(by_find_package "-DCMAKE_PREFIX_PATH=${prefix}")
file(GLOB_RECURSE pc "${prefix}/sluicegraph.pc")
cmake_path(GET pc PARENT_PATH pc_dir)
set(ENV{PKG_CONFIG_PATH} "${pc_dir}")
try_outside_project(by_pkg_config -D USE_PKG_CONFIG=ON)
if(NOT output_by_find_package STREQUAL output_by_pkg_config)
    message(FATAL_ERROR "the two ways give different programs:\n"
        "${output_by_find_package}\n${output_by_pkg_config}")
endif()

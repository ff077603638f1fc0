# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` leaves: library, headers, program, CMake package, pkg-config file, manual
# page and shell completion.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/SluiceGraph")

install(TARGETS sluicegraph EXPORT SluiceGraphTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/src/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/sluicegraph"
    FILES_MATCHING PATTERN "*.h" PATTERN "*.def")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

install(EXPORT SluiceGraphTargets NAMESPACE SluiceGraph:: DESTINATION "${package_dir}")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/SluiceGraphConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/SluiceGraphConfig.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/SluiceGraphConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/SluiceGraphConfig.cmake"
    "${PROJECT_BINARY_DIR}/SluiceGraphConfigVersion.cmake"
    DESTINATION "${package_dir}")

# The .pc file finds its folders from its own place, so an installed tree may be moved.
file(RELATIVE_PATH pc_to_prefix
    "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/sluicegraph.pc.in"
    "${PROJECT_BINARY_DIR}/sluicegraph.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/sluicegraph.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

if(TARGET sluice)
    file(RELATIVE_PATH bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(sluice PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
    install(TARGETS sluice RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")

    configure_file("${PROJECT_SOURCE_DIR}/docs/sluice.1.in"
        "${PROJECT_BINARY_DIR}/share/sluice.1" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/share/sluice.1"
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")

    set(bash_completion "${PROJECT_BINARY_DIR}/share/sluice.bash")
    set(zsh_completion "${PROJECT_BINARY_DIR}/share/_sluice")
    # Written under another name first: a program that fails must not leave an empty file that
    # looks up to date.
    add_custom_command(OUTPUT "${bash_completion}" "${zsh_completion}"
        COMMAND sluice completion bash > "${bash_completion}.new"
        COMMAND sluice completion zsh > "${zsh_completion}.new"
        COMMAND ${CMAKE_COMMAND} -E rename "${bash_completion}.new" "${bash_completion}"
        COMMAND ${CMAKE_COMMAND} -E rename "${zsh_completion}.new" "${zsh_completion}"
        DEPENDS sluice sluicegraph
        COMMENT "Writing the shell completion"
        VERBATIM)
    add_custom_target(sluice_completion ALL DEPENDS "${bash_completion}" "${zsh_completion}")
    install(FILES "${bash_completion}" RENAME sluice
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
    install(FILES "${zsh_completion}"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
endif()

# cmake --install: the library with its import library and header, the host, a CMake package, the documentation.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS Orvane orvane
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY include/orvane DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Orvane")
configure_package_config_file(cmake/OrvaneConfig.cmake.in "${PROJECT_BINARY_DIR}/package/OrvaneConfig.cmake"
    INSTALL_DESTINATION "${package_dir}"
    PATH_VARS CMAKE_INSTALL_BINDIR CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/OrvaneConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/package/OrvaneConfig.cmake"
    "${PROJECT_BINARY_DIR}/package/OrvaneConfigVersion.cmake"
    DESTINATION "${package_dir}")

# The same folders as in the source, so that the links between pages work. Links to sources and tests lead out of the
# archive.
set(documentation_dir "${CMAKE_INSTALL_DATAROOTDIR}/doc/orvane")
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md DESTINATION "${documentation_dir}")
install(DIRECTORY docs DESTINATION "${documentation_dir}"
    FILES_MATCHING PATTERN "*.md" PATTERN "*.xsd" PATTERN "*.schema.json" PATTERN "*.png")
install(FILES examples/agent.c DESTINATION "${documentation_dir}/examples")
# The published lists of docs/redaction.md. The words are those of others, with this licence.
install(FILES
    machine/recorder/redact/everyday_words.copyright
    machine/recorder/redact/everyday_words.inc
    DESTINATION "${documentation_dir}/machine/recorder/redact")
# The names are this project's own.
install(FILES machine/recorder/redact/known_names.cpp
    DESTINATION "${documentation_dir}/machine/recorder/redact")
install(DIRECTORY examples/machines DESTINATION "${documentation_dir}/examples")

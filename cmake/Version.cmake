# The version of all builds: the file VERSION, the only place that has it.
set(version_file "${CMAKE_CURRENT_LIST_DIR}/../VERSION")
file(STRINGS "${version_file}" ORVANE_VERSION LIMIT_COUNT 1)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${version_file}")

# The rooms of the house, from the ground up, and which rooms each may see. This is the one place where the
# arrows are written down: CMake makes the libraries from it, scripts/check-rooms compares every #include with it.
#
# orvane_room(NAME <target> DIR <folder> [ROOT <include root>] [USES <rooms>] [PACKAGES <headers>] [LINKS <system>])
# A room may use only rooms that stand above it. "orvane_base" (common/windows.h, the public header, Boost) is
# seen by all.

orvane_room(NAME orvane_text DIR src/common/text)
orvane_room(NAME orvane_logger DIR src/common/logger)
orvane_room(NAME orvane_record DIR src/common/record
    USES orvane_logger orvane_text)
orvane_room(NAME orvane_platform DIR src/common/platform
    USES orvane_logger orvane_text
    LINKS ole32 oleaut32 uuid wbemuuid advapi32)
orvane_room(NAME orvane_xml DIR src/common/xml
    USES orvane_platform orvane_text)
orvane_room(NAME orvane_disk DIR src/common/disk
    USES orvane_xml orvane_platform orvane_record orvane_logger orvane_text)
orvane_room(NAME orvane_volume DIR src/common/volume
    USES orvane_disk orvane_xml orvane_platform orvane_logger orvane_text)
orvane_room(NAME orvane_enumdisk DIR src/common/enumdisk
    USES orvane_platform orvane_record orvane_logger orvane_text)
orvane_room(NAME orvane_environment DIR src/capture/environment
    USES orvane_enumdisk orvane_volume orvane_disk orvane_platform orvane_record orvane_logger orvane_text)
orvane_room(NAME orvane_document DIR src/capture/document
    USES orvane_environment orvane_xml orvane_platform orvane_record orvane_text)
orvane_room(NAME orvane_grabber DIR src/capture/grabber
    USES orvane_document orvane_environment orvane_enumdisk orvane_volume orvane_disk orvane_xml orvane_platform
         orvane_record orvane_logger orvane_text)
orvane_room(NAME orvane_exports DIR src/capture/exports
    USES orvane_grabber orvane_environment orvane_disk orvane_platform orvane_logger orvane_text)

# The version stands in CMakeLists.txt alone.
target_compile_definitions(orvane_environment PUBLIC ORVANE_VERSION="${PROJECT_VERSION}")

# Around the library: its entry point, its heap and the memory of the C++ runtime. Only the finished DLL is linked
# with it.
orvane_room(NAME orvane_runtime DIR src/runtime)

# Beside the library: the described machine and the host. Neither sees any room of src/.
orvane_room(NAME orvane_machine DIR machine ROOT .
    PACKAGES orvane_json
    LINKS ole32 oleaut32 uuid wbemuuid advapi32)
orvane_room(NAME orvane_host DIR tools/orvane ROOT .
    USES orvane_machine
    PACKAGES orvane_json orvane_cli11)

# These two are no part of the library: a quick build is worth more than quick code.
foreach(room orvane_machine orvane_host)
    target_compile_options(${room} PRIVATE $<$<CONFIG:Release>:-O1>)
endforeach()

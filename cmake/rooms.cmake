# The rooms, from the lowest to the highest, and the rooms that each may use. A room is a folder that becomes
# one library. This is the only place that declares these dependencies: CMake creates the libraries from it,
# and scripts/check-rooms compares every #include with it.
#
# orvane_room(NAME <target> DIR <folder> [ROOT <include root>] [USES <rooms>] [PACKAGES <headers>]
#             [LINKS <system>])
# A room may use only rooms listed above it. Every room may use "orvane_base" (common/windows.h, the public
# header, Boost).

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

target_compile_definitions(orvane_environment PUBLIC ORVANE_VERSION="${ORVANE_VERSION}")

# The library's entry point, its heap and the memory of the C++ runtime. Only the finished DLL links it.
orvane_room(NAME orvane_runtime DIR src/runtime)

# Not part of the library: the described machine and the host. They use no room of src/.
orvane_room(NAME orvane_description DIR machine/description ROOT .
    PACKAGES orvane_json)
orvane_room(NAME orvane_simulation DIR machine/simulation ROOT .
    USES orvane_description)
orvane_room(NAME orvane_wmi DIR machine/wmi ROOT .
    USES orvane_simulation orvane_description
    LINKS ole32 oleaut32 uuid wbemuuid)
orvane_room(NAME orvane_session DIR machine/session ROOT .
    USES orvane_wmi orvane_simulation orvane_description
    LINKS advapi32)
orvane_room(NAME orvane_observe DIR machine/recorder/observe ROOT .
    USES orvane_description
    LINKS ole32 oleaut32 uuid wbemuuid advapi32)
orvane_room(NAME orvane_describe DIR machine/recorder/describe ROOT .
    USES orvane_observe orvane_session orvane_simulation orvane_description)
orvane_room(NAME orvane_prove DIR machine/recorder/prove ROOT .
    USES orvane_observe orvane_description)
orvane_room(NAME orvane_redact DIR machine/recorder/redact ROOT .
    USES orvane_observe orvane_description
    PACKAGES orvane_json)
include("${CMAKE_CURRENT_LIST_DIR}/document_rooms.cmake")
orvane_room(NAME orvane_host DIR tools/orvane ROOT .
    USES documents_commands documents_text orvane_redact orvane_prove orvane_describe orvane_observe
         orvane_session orvane_simulation orvane_description
    PACKAGES orvane_json orvane_cli11
    LINKS advapi32)

# For these, which are not part of the library, a fast build is more important than fast code.
foreach(room orvane_description orvane_simulation orvane_wmi orvane_session orvane_observe
        orvane_describe orvane_prove orvane_redact orvane_host)
    target_compile_options(${room} PRIVATE $<$<CONFIG:Release>:-O1>)
endforeach()

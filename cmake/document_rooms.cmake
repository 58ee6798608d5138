# The rooms of the documents, which are portable: they are built into orvane.exe and, by documents/CMakeLists.txt,
# natively. Both builds make the libraries from this list. The rules of rooms.cmake apply. LINKS are the libraries of
# Windows.

orvane_room(NAME documents_text DIR documents/text ROOT . PORTABLE)
orvane_room(NAME documents_model DIR documents/model ROOT . PORTABLE)
orvane_room(NAME documents_xml DIR documents/xml ROOT . PORTABLE
    USES documents_text
    LINKS shlwapi ole32 oleaut32 uuid)
orvane_room(NAME documents_reader DIR documents/reader ROOT . PORTABLE
    USES documents_xml documents_model documents_text)
orvane_room(NAME documents_verify DIR documents/verify ROOT . PORTABLE
    USES documents_model)
orvane_room(NAME documents_show DIR documents/show ROOT . PORTABLE
    USES documents_verify documents_model documents_text
    PACKAGES orvane_json)
orvane_room(NAME documents_report DIR documents/report ROOT . PORTABLE
    USES documents_show documents_verify documents_model documents_text
    PACKAGES orvane_json orvane_mustache)
orvane_room(NAME documents_plan DIR documents/plan ROOT . PORTABLE
    USES documents_show documents_verify documents_model documents_text)
orvane_room(NAME documents_diff DIR documents/diff ROOT . PORTABLE
    USES documents_show documents_model
    PACKAGES orvane_json)
orvane_room(NAME documents_commands DIR documents/commands ROOT . PORTABLE
    USES documents_plan documents_diff documents_report documents_show documents_verify documents_reader
         documents_model documents_text
    PACKAGES orvane_json orvane_cli11)

target_compile_definitions(documents_commands PRIVATE ORVANE_VERSION="${ORVANE_VERSION}")

# The templates and the style of the report become texts of its room.
set(folder "${CMAKE_CURRENT_LIST_DIR}/../documents/report")
foreach(template begin middle end disk piece part volume)
    string(TOUPPER "ORVANE_${template}" variable)
    file(READ "${folder}/${template}.mustache" ${variable})
endforeach()
file(READ "${folder}/page.css" ORVANE_STYLE)
file(GLOB sources CONFIGURE_DEPENDS "${folder}/*.mustache" "${folder}/*.css")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sources})
configure_file("${folder}/template_texts.cpp.in" "${PROJECT_BINARY_DIR}/template_texts.cpp" @ONLY)
target_sources(documents_report PRIVATE "${PROJECT_BINARY_DIR}/template_texts.cpp")

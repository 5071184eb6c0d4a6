# Where everything is after the installation. Each program finds the rest from its own place, so that
# the whole can be moved.
#
#   bin/voxtrel, bin/voxtrel-connection, bin/voxtrel-dial, bin/voxtrel-home, bin/voxtrel-panel
#   lib/voxtrel/voxtrel.cpl
#   lib/voxtrel/voxtrel-ebook.so: loaded when the desktop's address books are first asked for
#   share/voxtrel/{help,languages,samples}
#   share/applications, share/icons: what a desktop shows

install(TARGETS voxtrel voxtrel-connection voxtrel-dial voxtrel-home voxtrel-panel RUNTIME DESTINATION bin)
install(TARGETS voxtrel_cpl voxtrel_ebook LIBRARY DESTINATION lib/voxtrel)

install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/help" DESTINATION share/voxtrel)
# The same page in the other languages, each in a folder of its own.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
file(GLOB help_sources CONFIGURE_DEPENDS
     "${PROJECT_SOURCE_DIR}/resources/*_strings.h" "${PROJECT_SOURCE_DIR}/resources/help/*.htm"
     "${PROJECT_SOURCE_DIR}/resources/languages/*.lng"
     "${PROJECT_SOURCE_DIR}/resources/translations/*.po"
     "${PROJECT_SOURCE_DIR}/resources/translations/help/*.po"
     "${PROJECT_SOURCE_DIR}/tools/*.py")
set(help_pages "${PROJECT_BINARY_DIR}/help")
add_custom_command(
  OUTPUT "${help_pages}/stamp"
  COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/tools/help_pages.py" write "${help_pages}"
  COMMAND ${CMAKE_COMMAND} -E touch "${help_pages}/stamp"
  DEPENDS ${help_sources}
  VERBATIM)
add_custom_target(help_pages ALL DEPENDS "${help_pages}/stamp")
install(DIRECTORY "${help_pages}/" DESTINATION share/voxtrel/help PATTERN stamp EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/languages" DESTINATION share/voxtrel)
install(
  DIRECTORY "${PROJECT_SOURCE_DIR}/samples"
  DESTINATION share/voxtrel
  FILES_MATCHING
  PATTERN "*.wav"
  PATTERN "*.vcf")

find_program(RSVG_CONVERT rsvg-convert REQUIRED)
file(GLOB drawings CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/resources/pictures/*.svg")
set(rendered "${PROJECT_BINARY_DIR}/rendered")
add_custom_command(
  OUTPUT "${rendered}/stamp"
  COMMAND "${PROJECT_SOURCE_DIR}/tools/render_pictures.sh" "${rendered}"
  COMMAND ${CMAKE_COMMAND} -E touch "${rendered}/stamp"
  DEPENDS ${drawings} "${PROJECT_SOURCE_DIR}/tools/render_pictures.sh"
  VERBATIM)
add_custom_target(rendered_pictures ALL DEPENDS "${rendered}/stamp")
install(DIRECTORY "${rendered}/icons" DESTINATION share)
install(FILES "${PROJECT_SOURCE_DIR}/host/home/voxtrel.desktop"
              "${PROJECT_SOURCE_DIR}/host/panel/voxtrel-panel.desktop"
        DESTINATION share/applications)

# The same places in the build tree.
set(help_links "${PROJECT_BINARY_DIR}/share/voxtrel/help")
if(IS_SYMLINK "${help_links}")
  file(REMOVE "${help_links}")
endif()
file(MAKE_DIRECTORY "${help_links}")
file(GLOB help_files "${PROJECT_SOURCE_DIR}/resources/help/*")
foreach(source IN LISTS help_files)
  cmake_path(GET source FILENAME name)
  file(CREATE_LINK "${source}" "${help_links}/${name}" SYMBOLIC)
endforeach()
foreach(language IN ITEMS de es fr ru zh_CN)
  file(CREATE_LINK "${help_pages}/${language}" "${help_links}/${language}" SYMBOLIC)
endforeach()
foreach(source IN ITEMS resources/languages samples)
  cmake_path(GET source FILENAME folder)
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${source}" "${PROJECT_BINARY_DIR}/share/voxtrel/${folder}"
       SYMBOLIC)
endforeach()

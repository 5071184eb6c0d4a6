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

set(VOXTREL_DATA share/voxtrel)
include(InstallData)

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

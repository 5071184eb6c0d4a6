# Manual pages and completions for shells, and a Debian package of all that is installed:
#
#   cmake --build --preset release --target package
#
# writes build/release/voxtrel_VERSION_ARCHITECTURE.deb.

# Without the interpreter, which a user does not need for ./run, there are neither pages nor a package.
# A program under a sanitizer is none that anybody installs, and some machines cannot start it plainly.
find_package(Python3 COMPONENTS Interpreter)
if(NOT Python3_FOUND OR VOXTREL_SANITIZE)
  return()
endif()

set(programs voxtrel voxtrel-connection voxtrel-dial voxtrel-home voxtrel-panel)
set(program_files)
foreach(program IN LISTS programs)
  list(APPEND program_files "$<TARGET_FILE:${program}>")
endforeach()

# Each program says itself what there is to say. A program of another processor cannot be asked here.
set(documents "${PROJECT_BINARY_DIR}/documents")
add_custom_command(
  OUTPUT "${documents}/stamp"
  COMMAND ${CMAKE_COMMAND} -E rm -rf "${documents}"
  COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/tools/make_documents.py" --version
          "${PROJECT_VERSION}" "${documents}" ${program_files}
  COMMAND ${CMAKE_COMMAND} -E touch "${documents}/stamp"
  DEPENDS ${programs} "${PROJECT_SOURCE_DIR}/tools/make_documents.py"
  VERBATIM)
add_custom_target(documents ALL DEPENDS "${documents}/stamp")
# A build of single targets may have none of them.
install(DIRECTORY "${documents}/man1" DESTINATION share/man OPTIONAL)
install(DIRECTORY "${documents}/bash/" DESTINATION share/bash-completion/completions OPTIONAL)
install(DIRECTORY "${documents}/zsh/" DESTINATION share/zsh/vendor-completions OPTIONAL)
install(DIRECTORY "${documents}/fish/" DESTINATION share/fish/vendor_completions.d OPTIONAL)

# What a software centre shows. The format wants web addresses for pictures, so without one there are
# none: a software centre would ask for what is not there.
set(VOXTREL_PICTURES_URL ""
    CACHE STRING "Where the pictures of docs/pictures are published. Empty if they are not")
set(metainfo "${PROJECT_BINARY_DIR}/tech.zedra.voxtrel.metainfo.xml")
configure_file("${PROJECT_SOURCE_DIR}/packaging/voxtrel.metainfo.xml" "${metainfo}" @ONLY)
if(VOXTREL_PICTURES_URL STREQUAL "")
  file(READ "${metainfo}" lines)
  string(REGEX REPLACE " *<screenshots>.*</screenshots>\n" "" lines "${lines}")
  file(WRITE "${metainfo}" "${lines}")
endif()
install(FILES "${metainfo}" DESTINATION share/metainfo)

install(FILES "${PROJECT_SOURCE_DIR}/packaging/copyright" DESTINATION share/doc/voxtrel)
find_program(GZIP gzip REQUIRED)
add_custom_command(
  OUTPUT "${PROJECT_BINARY_DIR}/changelog.gz"
  COMMAND "${GZIP}" -9nc "${PROJECT_SOURCE_DIR}/packaging/changelog" >
          "${PROJECT_BINARY_DIR}/changelog.gz"
  DEPENDS "${PROJECT_SOURCE_DIR}/packaging/changelog")
add_custom_target(changelog ALL DEPENDS "${PROJECT_BINARY_DIR}/changelog.gz")
install(FILES "${PROJECT_BINARY_DIR}/changelog.gz" DESTINATION share/doc/voxtrel OPTIONAL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME voxtrel)
set(CPACK_PACKAGE_VENDOR "The Voxtrel authors")
set(CPACK_PACKAGE_CONTACT "The Voxtrel authors <authors@voxtrel.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "say a name, and that person is called")
set(CPACK_PACKAGE_DESCRIPTION
    "A voice dialer calls the person whose name you say. You teach it a name
once: you choose a contact and say the name. Voxtrel keeps the recording and
a template of how it sounds. Later it hears whose name you say, asks if it is
not sure, and has the telephone program of the desktop or a modem dial.

It judges each recording, shows which names sound too much alike, and keeps
deleted voice tags for 30 days. It reads the desktop's address books or
vCards and never changes them. All of it works in windows and on the
command line.")
set(CPACK_PACKAGE_FILE_NAME voxtrel)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Not linked: the letters of the dialogs, the sound library, and the words of the window library's own
# buttons.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-wine, libpulse0, qt6-translations-l10n")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pipewire-pulse | pulseaudio, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "evolution-data-server, gnome-contacts")
# The target `package` of CPack itself would first build everything, every test included. This one
# builds what is installed.
set(CPACK_OUTPUT_CONFIG_FILE "${PROJECT_BINARY_DIR}/package.cmake")
include(CPack)
add_custom_target(
  package
  COMMAND ${CMAKE_CPACK_COMMAND} --config "${PROJECT_BINARY_DIR}/package.cmake"
  DEPENDS ${programs} voxtrel_cpl voxtrel_ebook rendered_pictures help_pages documents changelog
  USES_TERMINAL VERBATIM)

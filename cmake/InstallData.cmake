# The help, the language files and the samples, in the folder VOXTREL_DATA of the installation and of
# the build tree.

install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/help" DESTINATION "${VOXTREL_DATA}")
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
install(DIRECTORY "${help_pages}/" DESTINATION "${VOXTREL_DATA}/help" PATTERN stamp EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/languages" DESTINATION "${VOXTREL_DATA}")
install(
  DIRECTORY "${PROJECT_SOURCE_DIR}/samples"
  DESTINATION "${VOXTREL_DATA}"
  FILES_MATCHING
  PATTERN "*.wav"
  PATTERN "*.vcf")

# The same places in the build tree.
set(help_links "${PROJECT_BINARY_DIR}/${VOXTREL_DATA}/help")
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
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${source}" "${PROJECT_BINARY_DIR}/${VOXTREL_DATA}/${folder}"
       SYMBOLIC)
endforeach()

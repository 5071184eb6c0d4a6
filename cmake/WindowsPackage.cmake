# The archive for Windows: all of it in one folder, which users put where they like. Each part finds the
# others from its own place.
#
#   voxtrel.cpl, voxtrel.exe, readme.txt
#   data/{help,languages,samples}

install(TARGETS voxtrel RUNTIME DESTINATION .)
install(TARGETS voxtrel_cpl LIBRARY DESTINATION .)
# The ends of lines are those of Windows.
file(READ "${PROJECT_SOURCE_DIR}/packaging/windows.txt" readme)
string(REPLACE "\n" "\r\n" readme "${readme}")
file(WRITE "${PROJECT_BINARY_DIR}/readme.txt" "${readme}")
install(FILES "${PROJECT_BINARY_DIR}/readme.txt" DESTINATION .)

set(VOXTREL_DATA data)
include(InstallData)

set(CPACK_GENERATOR ZIP)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_FILE_NAME "voxtrel-${PROJECT_VERSION}-windows-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)

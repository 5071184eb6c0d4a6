# Fails if the library exports anything but its entry.
#
#   cmake -DNM=... -DLIBRARY=... -P check_exports.cmake
execute_process(
  COMMAND "${NM}" -D --defined-only --format=posix "${LIBRARY}"
  OUTPUT_VARIABLE symbols
  RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT symbols MATCHES "^CPlApplet T [0-9a-f]+ [0-9a-f]*\n$")
  message(FATAL_ERROR "Not CPlApplet alone:\n${symbols}")
endif()

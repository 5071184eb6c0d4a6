# The libraries of the command line that are headers alone: fmt::fmt, CLI11::CLI11 and
# nlohmann_json::nlohmann_json.

if(NOT CMAKE_CROSSCOMPILING)
  find_package(CLI11 REQUIRED)
  find_package(fmt REQUIRED)
  find_package(nlohmann_json REQUIRED)
  return()
endif()

# A cross compiler takes them out of the system's folder, and must not see the headers next to them.
foreach(folder fmt CLI nlohmann)
  find_path(VOXTREL_FOLDER_OF_${folder} ${folder} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH
            NO_DEFAULT_PATH REQUIRED)
  file(CREATE_LINK "${VOXTREL_FOLDER_OF_${folder}}/${folder}" "${PROJECT_BINARY_DIR}/include/${folder}"
       SYMBOLIC)
endforeach()
foreach(library fmt::fmt CLI11::CLI11 nlohmann_json::nlohmann_json)
  add_library(${library} INTERFACE IMPORTED)
  target_include_directories(${library} SYSTEM INTERFACE "${PROJECT_BINARY_DIR}/include")
endforeach()
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)

# One target for each folder, all with the same options.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_package(Threads REQUIRED)

# Options of every target of the project. Contraction to fused operations is off everywhere, since
# each rounding of the speech mathematics is part of its behaviour.
add_library(voxtrel_options INTERFACE)
target_compile_options(
  voxtrel_options
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Wsign-conversion
            -Wshadow
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            -Wold-style-cast
            -Wundef
            -Werror
            -ffp-contract=off
            -fno-fast-math)
target_include_directories(voxtrel_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_link_libraries(voxtrel_options INTERFACE Threads::Threads)
if(VOXTREL_SANITIZE)
  target_compile_options(voxtrel_options INTERFACE -fsanitize=${VOXTREL_SANITIZE}
                                                   -fno-sanitize-recover=all
                                                   -fno-omit-frame-pointer)
  target_link_options(voxtrel_options INTERFACE -fsanitize=${VOXTREL_SANITIZE})
endif()

# voxtrel_library(NAME SOURCES ... [DEPENDS ...])
function(voxtrel_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(voxtrel_${name} STATIC ${ARG_SOURCES})
  target_link_libraries(voxtrel_${name} PUBLIC voxtrel_options ${ARG_DEPENDS})
endfunction()

# voxtrel_headers(NAME [DEPENDS ...]): a folder that holds interfaces only.
function(voxtrel_headers name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  add_library(voxtrel_${name} INTERFACE)
  target_link_libraries(voxtrel_${name} INTERFACE voxtrel_options ${ARG_DEPENDS})
endfunction()

# All test programs that are labelled "threads", for a build that runs no others.
add_custom_target(thread_tests)

# voxtrel_test(NAME SOURCES ... DEPENDS ... [LABELS ...]): one test program; each case is one test.
function(voxtrel_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE voxtrel_options ${ARG_DEPENDS} GTest::gmock GTest::gtest_main)
  if(NOT ARG_LABELS)
    set(ARG_LABELS "${name}")
  endif()
  if("threads" IN_LIST ARG_LABELS)
    add_dependencies(thread_tests ${name})
  endif()
  # A list does not survive the discovery: its second label would be taken for a property's name. As
  # ctest selects labels by regular expression, each one is found in the joined text.
  list(JOIN ARG_LABELS "+" labels)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS "${labels}" TIMEOUT 300)
endfunction()

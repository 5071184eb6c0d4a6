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
# All code is position-independent: the windows' library asks for it, and the precompiled header fits
# only code that is compiled alike.
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
            -pthread
            -fPIC
            -ffp-contract=off
            -fno-fast-math)
# g++ looks for unused memory of its own after each 128 MiB, which is a tenth of its time. Here it does so
# after 1 GiB.
#
# g++ 12 gives some warnings because it follows the flow of optimised code. They are shown and are no
# errors. About the strings and vectors of its own library they are wrong (restrict, array-bounds),
# differently at each level of optimisation, and about tests that replace operator new as well.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(
    voxtrel_options
    INTERFACE --param=ggc-min-heapsize=1048576
              -Wno-error=restrict
              -Wno-error=array-bounds
              -Wno-error=stringop-overflow
              -Wno-error=stringop-overread
              -Wno-error=maybe-uninitialized
              -Wno-error=free-nonheap-object
              -Wno-error=dangling-pointer
              -Wno-error=mismatched-new-delete
              -Wno-error=nonnull)
endif()
target_include_directories(voxtrel_options INTERFACE "${PROJECT_SOURCE_DIR}")
if(WIN32)
  # Windows 7 and later.
  target_compile_definitions(voxtrel_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
                                                       _WIN32_WINNT=0x0601)
endif()
# A header alone. It is taken out of the system's folder, since a cross compiler must not see the
# headers next to it.
find_path(TL_EXPECTED_FOLDER tl/expected.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
configure_file("${TL_EXPECTED_FOLDER}/tl/expected.hpp" "${PROJECT_BINARY_DIR}/include/tl/expected.hpp"
               COPYONLY)
target_include_directories(voxtrel_options SYSTEM INTERFACE "${PROJECT_BINARY_DIR}/include")
target_link_libraries(voxtrel_options INTERFACE Threads::Threads)
if(VOXTREL_SANITIZE)
  # From the build folder, so that clones share their objects. ccache looks into the file only under this
  # older name of the option.
  file(RELATIVE_PATH ignored "${PROJECT_BINARY_DIR}" "${PROJECT_SOURCE_DIR}/cmake/sanitizers.ignore")
  target_compile_options(voxtrel_options INTERFACE -fsanitize=${VOXTREL_SANITIZE}
                                                   $<$<BOOL:$<TARGET_PROPERTY:VOXTREL_IS_TEST>>:-fno-sanitize=undefined>
                                                   -fno-sanitize-recover=all
                                                   -fno-omit-frame-pointer
                                                   "-fsanitize-blacklist=${ignored}")
  target_compile_definitions(voxtrel_options INTERFACE _GLIBCXX_ASSERTIONS)
  if(VOXTREL_SANITIZE MATCHES address)
    # Its runtime looks for use after return only if it is asked to, and nobody asks.
    target_compile_options(voxtrel_options INTERFACE -fsanitize-address-use-after-return=never)
  endif()
  # Instrumented programs are large: the quicker linker saves minutes over all of them.
  target_link_options(voxtrel_options INTERFACE -fsanitize=${VOXTREL_SANITIZE} -fuse-ld=lld)
endif()

# Heavy arithmetic. Under the sanitizers nobody should wait for it, and in a release it should be as
# fast as it can be.
set(VOXTREL_ARITHMETIC_OPTIONS $<$<CONFIG:Release>:-O3>)
if(VOXTREL_SANITIZE)
  set(VOXTREL_ARITHMETIC_OPTIONS -O2)
endif()
# The fuzzer learns nothing from the comparisons of a hundred thousand values, which would take most
# of its time. Those of headers and counts, in other files, stay watched.
if(VOXTREL_FUZZ)
  list(APPEND VOXTREL_ARITHMETIC_OPTIONS -fno-sanitize-coverage=trace-cmp)
endif()

# The inner functions of the mathematics are compiled for two widths of vectors, of which the loader of
# the program chooses one. The loader of Linux can do that, and g++ knows the attribute for every kind
# of function. The sanitizers are not up yet when the loader asks.
set(VOXTREL_TWO_VECTOR_WIDTHS OFF)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux"
   AND CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64"
   AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU"
   AND NOT VOXTREL_SANITIZE)
  set(VOXTREL_TWO_VECTOR_WIDTHS ON)
endif()

# If the files of a target are joined, the compiler reads their headers once, which is most of its work.
# Their helpers then need names of their own. The build `dev` compiles each file by itself and shows an
# include that is missing.
option(VOXTREL_JOIN_PROGRAM "Compile the files of each library of the program as one" OFF)
option(VOXTREL_JOIN_TESTS "Compile the files of each test program as one" OFF)
option(VOXTREL_TEST_PROGRAMS "Run each test program as one test, which saves starting it for each case" OFF)

# Whether nobody runs this build but the tests. Users get the programs for Windows from the build that is tested.
set(VOXTREL_ONLY_TESTED ${VOXTREL_TEST_PROGRAMS})
if(WIN32)
  set(VOXTREL_ONLY_TESTED OFF)
endif()

# What nearly every file includes, compiled once for all of them. Only builds that join files use it: the
# build `dev` still shows an include that is missing. What is optimised otherwise than the rest opts out
# (DISABLE_PRECOMPILE_HEADERS of a library, SKIP_PRECOMPILE_HEADERS of a file).
set(VOXTREL_COMMON_HEADERS
    <algorithm>
    <array>
    <chrono>
    <filesystem>
    <functional>
    <map>
    <memory>
    <optional>
    <span>
    <string>
    <vector>
    "${PROJECT_SOURCE_DIR}/platform/platform.h"
    "${PROJECT_SOURCE_DIR}/language/texts.h")
# The same with what windows are made of.
set(VOXTREL_QT_HEADERS
    ${VOXTREL_COMMON_HEADERS}
    <QAbstractItemView>
    <QApplication>
    <QComboBox>
    <QDir>
    <QKeyEvent>
    <QLabel>
    <QLineEdit>
    <QListWidget>
    <QLocale>
    <QMenu>
    <QMessageBox>
    <QPainter>
    <QPointer>
    <QProcess>
    <QPushButton>
    <QScrollArea>
    <QStyledItemDelegate>
    <QStyleOption>
    <QTimer>
    <QToolButton>
    <QVBoxLayout>
    <QWindow>)

set(VOXTREL_PRELUDE OFF)
if(VOXTREL_JOIN_PROGRAM AND NOT CMAKE_CROSSCOMPILING)
  set(VOXTREL_PRELUDE ON)
endif()

# voxtrel_prelude(NAME HEADERS ... [DEPENDS ...]): headers that are compiled once.
function(voxtrel_prelude name)
  cmake_parse_arguments(ARG "" "" "HEADERS;DEPENDS" ${ARGN})
  if(VOXTREL_PRELUDE)
    file(WRITE "${PROJECT_BINARY_DIR}/prelude.cpp" "")
    add_library(${name} STATIC "${PROJECT_BINARY_DIR}/prelude.cpp")
    target_link_libraries(${name} PRIVATE voxtrel_options ${ARG_DEPENDS})
    target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
  endif()
endfunction()

# voxtrel_reuse(PRELUDE TARGET): the target does not compile those headers again, if this build has them.
function(voxtrel_reuse prelude name)
  if(TARGET ${prelude})
    target_precompile_headers(${name} REUSE_FROM ${prelude})
  endif()
endfunction()

voxtrel_prelude(voxtrel_prelude HEADERS ${VOXTREL_COMMON_HEADERS})

# voxtrel_join(PROGRAM|TESTS TARGET)
function(voxtrel_join part name)
  set_target_properties(${name} PROPERTIES UNITY_BUILD "${VOXTREL_JOIN_${part}}"
                                           UNITY_BUILD_BATCH_SIZE 0)
  # The warning takes what lies in a joined file for what lies in a header.
  if(VOXTREL_JOIN_${part} AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${name} PRIVATE -Wno-subobject-linkage)
  endif()
endfunction()

# voxtrel_library(NAME [QT] SOURCES ... [DEPENDS ...]): QT says that its files make windows.
function(voxtrel_library name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(voxtrel_${name} STATIC ${ARG_SOURCES})
  target_link_libraries(voxtrel_${name} PUBLIC voxtrel_options ${ARG_DEPENDS})
  voxtrel_join(PROGRAM voxtrel_${name})
  if(ARG_QT AND TARGET voxtrel_qt_prelude)
    voxtrel_reuse(voxtrel_qt_prelude voxtrel_${name})
  else()
    voxtrel_reuse(voxtrel_prelude voxtrel_${name})
  endif()
endfunction()

# voxtrel_headers(NAME [DEPENDS ...]): a folder that holds interfaces only.
function(voxtrel_headers name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  add_library(voxtrel_${name} INTERFACE)
  target_link_libraries(voxtrel_${name} INTERFACE voxtrel_options ${ARG_DEPENDS})
endfunction()

# voxtrel_door(NAME OUTPUT file SOURCES ... DEPENDS ...): a library that is loaded while the program
# runs. It exports what its exports.map names and nothing else, whatever it is linked with, and stays
# in the process: its libraries register themselves for good, and threads may run in it.
function(voxtrel_door name)
  cmake_parse_arguments(ARG "" "OUTPUT" "SOURCES;DEPENDS" ${ARGN})
  set(exports "${CMAKE_CURRENT_SOURCE_DIR}/exports.map")
  add_library(voxtrel_${name} MODULE ${ARG_SOURCES})
  target_link_libraries(voxtrel_${name} PRIVATE voxtrel_options ${ARG_DEPENDS})
  voxtrel_join(PROGRAM voxtrel_${name})
  set_target_properties(
    voxtrel_${name}
    PROPERTIES PREFIX ""
               OUTPUT_NAME "${ARG_OUTPUT}"
               SUFFIX ""
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON
               LINK_DEPENDS "${exports}")
  target_link_options(voxtrel_${name} PRIVATE "LINKER:--version-script=${exports}"
                      "LINKER:--exclude-libs,ALL" "LINKER:-z,nodelete")
  if(NOT VOXTREL_SANITIZE)
    # What the sanitizers call is in the program that loads the library.
    target_link_options(voxtrel_${name} PRIVATE "LINKER:--no-undefined")
  endif()
endfunction()

# Test programs by label, for builds that run no others: those with threads, and those that compare
# the bits of the mathematics.
add_custom_target(thread_tests)
add_custom_target(bits_tests)
add_custom_target(emulated_tests)
# What is tried with the program as users run it: these, and what compares bits.
add_custom_target(release_tests)
add_dependencies(release_tests bits_tests)
# What only the tests that take long need.
add_custom_target(long_tests)

# Tests are hardly optimised, since they are compiled more often than they run. They are if the processor
# is emulated, which makes it slow. For the same reason the sanitizer of undefined behaviour watches the
# program alone. Builds with a sanitizer have no lines for a debugger, which cost a fifth of the compiling;
# -DCMAKE_CXX_FLAGS_DEBUG=-g1 gives them to the program.
function(voxtrel_test_options name)
  if(VOXTREL_SANITIZE)
    set_target_properties(${name} PROPERTIES VOXTREL_IS_TEST ON)
    target_compile_options(${name} PRIVATE -g0)
  endif()
  set(level -O0)
  if(CMAKE_CROSSCOMPILING)
    set(level -O1)
  endif()
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:${level}>)
endfunction()

# What every test includes, compiled once. In a build that joins files also what many tests include, and the
# same with what windows are made of.
function(voxtrel_test_preludes)
  set(headers <gmock/gmock.h> <gtest/gtest.h> <algorithm> <functional> <memory> <optional> <span> <string>
              <vector>)
  set(joined OFF)
  if(VOXTREL_JOIN_TESTS AND NOT CMAKE_CROSSCOMPILING)
    set(joined ON)
    list(APPEND headers ${VOXTREL_COMMON_HEADERS} <fstream> <set>)
    foreach(header machine/memory_file_system machine/memory_registry support/registry_access support/results
                   support/watched_file_system support/watched_registry)
      list(APPEND headers "${PROJECT_SOURCE_DIR}/tests/${header}.h")
    endforeach()
  endif()
  voxtrel_test_prelude(voxtrel_test_prelude HEADERS ${headers})
  if(joined AND VOXTREL_WITH_SYSTEM)
    find_package(Qt6 REQUIRED COMPONENTS Widgets)
    voxtrel_test_prelude(voxtrel_qt_test_prelude HEADERS ${headers} ${VOXTREL_QT_HEADERS} DEPENDS Qt6::Widgets)
  endif()
endfunction()

function(voxtrel_test_prelude name)
  cmake_parse_arguments(ARG "" "" "HEADERS;DEPENDS" ${ARGN})
  file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/test_prelude.cpp" "int main() { return 0; }\n")
  add_executable(${name} "${CMAKE_CURRENT_BINARY_DIR}/test_prelude.cpp")
  target_link_libraries(${name} PRIVATE voxtrel_options GTest::gmock ${ARG_DEPENDS})
  voxtrel_test_options(${name})
  target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
endfunction()

# voxtrel_test_reuse(TARGET QT): the headers of one of these preludes are not compiled again: if QT is true,
# those with what windows are made of.
function(voxtrel_test_reuse name qt)
  if(qt AND TARGET voxtrel_qt_test_prelude)
    target_precompile_headers(${name} REUSE_FROM voxtrel_qt_test_prelude)
  else()
    target_precompile_headers(${name} REUSE_FROM voxtrel_test_prelude)
  endif()
endfunction()

# voxtrel_test_library(NAME [QT] SOURCES ... [DEPENDS ...]): what several test programs share. The benchmarks
# and the fuzz targets use some of these, too.
function(voxtrel_test_library name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(voxtrel_${name} STATIC ${ARG_SOURCES})
  target_link_libraries(voxtrel_${name} PUBLIC voxtrel_options ${ARG_DEPENDS})
  voxtrel_join(TESTS voxtrel_${name})
  if(BUILD_TESTING)
    target_link_libraries(voxtrel_${name} PUBLIC GTest::gmock)
    voxtrel_test_options(voxtrel_${name})
    voxtrel_test_reuse(voxtrel_${name} "${ARG_QT}")
  endif()
endfunction()

# voxtrel_test_program(NAME [QT] SOURCES ... DEPENDS ...): a test program that is not yet run. QT says that
# its files make windows.
function(voxtrel_test_program name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;DEPENDS" ${ARGN})
  if(NOT BUILD_TESTING)
    add_executable(${name} EXCLUDE_FROM_ALL ${ARG_SOURCES})
    return()
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE voxtrel_options ${ARG_DEPENDS} GTest::gmock GTest::gtest_main)
  voxtrel_test_options(${name})
  voxtrel_join(TESTS ${name})
  voxtrel_test_reuse(${name} "${ARG_QT}")
endfunction()

# For what must not be joined, such as test programs with helpers of the same name in several files.
function(voxtrel_keep_apart)
  set_target_properties(${ARGN} PROPERTIES UNITY_BUILD OFF)
endfunction()

# voxtrel_test(NAME [QT] SOURCES ... DEPENDS ... [LABELS ...] [COST n] [SHARDS n]): one test program; each
# case is one test. What takes long begins first, so that nobody waits for it at the end. SHARDS says in how
# many parts the sanitizers run the program side by side, as one test each. COST is about how many seconds a
# part takes there.
function(voxtrel_test name)
  cmake_parse_arguments(ARG "QT" "COST;SHARDS" "SOURCES;DEPENDS;LABELS" ${ARGN})
  if(NOT ARG_COST)
    set(ARG_COST 0)
  endif()
  set(qt)
  if(ARG_QT)
    set(qt QT)
  endif()
  voxtrel_test_program(${name} ${qt} SOURCES ${ARG_SOURCES} DEPENDS ${ARG_DEPENDS})
  if(NOT BUILD_TESTING)
    return()
  endif()
  if(NOT ARG_LABELS)
    set(ARG_LABELS "${name}")
  endif()
  if("threads" IN_LIST ARG_LABELS)
    add_dependencies(thread_tests ${name})
  endif()
  if("bits" IN_LIST ARG_LABELS)
    add_dependencies(bits_tests ${name})
  endif()
  if("emulated" IN_LIST ARG_LABELS)
    add_dependencies(emulated_tests ${name})
  endif()
  if("program" IN_LIST ARG_LABELS)
    add_dependencies(release_tests ${name})
  endif()
  # The discovery would take the second label of a list for the name of a property. So the labels are
  # joined to one text: ctest selects labels by regular expression and finds each of them there.
  list(JOIN ARG_LABELS "+" labels)
  if(VOXTREL_TEST_PROGRAMS AND ARG_SHARDS)
    math(EXPR last "${ARG_SHARDS} - 1")
    foreach(shard RANGE ${last})
      add_test(NAME ${name}_${shard} COMMAND ${name})
      set_tests_properties(
        ${name}_${shard}
        PROPERTIES LABELS "${labels}" TIMEOUT 900 COST ${ARG_COST}
                   ENVIRONMENT "GTEST_TOTAL_SHARDS=${ARG_SHARDS};GTEST_SHARD_INDEX=${shard}")
    endforeach()
  elseif(VOXTREL_TEST_PROGRAMS)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES LABELS "${labels}" TIMEOUT 900 COST ${ARG_COST})
  else()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS "${labels}" TIMEOUT 300
                                                                    COST ${ARG_COST})
  endif()
endfunction()

# Builds the comparison or the transform with one line changed for the worse, runs the tests of bit
# identity on it, and fails unless they see the difference.
#
#   cmake -DCOMPILER=... -DWIDTHS=... -DROOT=... -DWORK=... -DSOURCE=... -DFROM=... -DTO=... 
#         -DFILTER=... -DLIBRARIES=a;b -P fast_mutation.cmake

file(READ "${ROOT}/voicemath/${SOURCE}" text)
string(FIND "${text}" "${FROM}" found)
if(found EQUAL -1)
  message(FATAL_ERROR "${SOURCE} has no '${FROM}' any more; the mutation has to be written again")
endif()
string(REPLACE "${FROM}" "${TO}" text "${text}")
file(MAKE_DIRECTORY "${WORK}")
file(WRITE "${WORK}/${SOURCE}" "${text}")

# The other sources of the mathematics come from the library, in which the changed one is not looked
# for any more.
execute_process(
  COMMAND ${COMPILER} -std=c++20 -O2 -ffp-contract=off ${WIDTHS} -I${ROOT} -include cmath
          "${WORK}/${SOURCE}" ${LIBRARIES} -lgtest_main -lgtest -lpthread -o "${WORK}/mutant"
  RESULT_VARIABLE built
  OUTPUT_VARIABLE said
  ERROR_VARIABLE said)
if(built)
  message(FATAL_ERROR "the mutant does not build: ${said}")
endif()
execute_process(
  COMMAND "${WORK}/mutant" "--gtest_filter=${FILTER}"
  RESULT_VARIABLE result
  OUTPUT_VARIABLE said
  ERROR_VARIABLE said)
if(NOT said MATCHES "FAILED TEST")
  message(FATAL_ERROR "nobody noticed '${TO}' (${result}): ${said}")
endif()

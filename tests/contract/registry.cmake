# Every back end of the registry; the label has it run under the thread sanitizer as well.
set(registry_contract_sources
    "${CMAKE_CURRENT_LIST_DIR}/registry_contract.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/registry_group_contract.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/registry_contract_memory.cpp")
set(registry_contract_depends voxtrel_headless_registry)
if(NOT VOXTREL_CORE_ONLY)
  list(APPEND registry_contract_sources "${CMAKE_CURRENT_LIST_DIR}/registry_contract_sqlite.cpp")
  list(APPEND registry_contract_depends voxtrel_sqlite)
endif()
voxtrel_test(
  registry_contract_test
  SOURCES ${registry_contract_sources}
  DEPENDS ${registry_contract_depends}
  LABELS threads)

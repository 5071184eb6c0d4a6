# Every back end of the registry; the label has it run under the thread sanitizer as well.
voxtrel_test(
  registry_contract_test
  SOURCES registry_contract.cpp registry_contract_memory.cpp registry_contract_sqlite.cpp
          registry_group_contract.cpp
  DEPENDS voxtrel_headless_registry voxtrel_sqlite voxtrel_test_support
  LABELS "contract;threads")

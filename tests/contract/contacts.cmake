voxtrel_test(
  contacts_contract_test
  SOURCES contacts_contract.cpp contacts_contract_backends.cpp
  DEPENDS voxtrel_ebook voxtrel_headless voxtrel_headless_contacts voxtrel_headless_registry
          voxtrel_test_support
  LABELS contract)

# Apart from voxtrel_text, since only what shows lists needs the collation tables. A build that has
# no library of the system orders by code units.
if(VOXTREL_CORE_ONLY)
  voxtrel_library(collation SOURCES collation_basic.cpp DEPENDS voxtrel_platform)
else()
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(ICU_I18N REQUIRED IMPORTED_TARGET icu-i18n)
  voxtrel_library(collation SOURCES collation.cpp DEPENDS voxtrel_platform)
  target_link_libraries(voxtrel_collation PRIVATE PkgConfig::ICU_I18N)
endif()

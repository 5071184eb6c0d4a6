# Apart from voxtrel_text, since only what shows lists needs the collation tables.
if(NOT VOXTREL_CORE_ONLY)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(ICU_I18N REQUIRED IMPORTED_TARGET icu-i18n)
  voxtrel_library(collation SOURCES collation.cpp DEPENDS voxtrel_platform)
  target_link_libraries(voxtrel_collation PRIVATE PkgConfig::ICU_I18N)
endif()

voxtrel_library(
  headless_wave_in
  SOURCES headless_wave_in.cpp
  DEPENDS voxtrel_platform)

voxtrel_test(
  headless_wave_in_test
  SOURCES headless_wave_in_test.cpp
  DEPENDS voxtrel_headless_wave_in)

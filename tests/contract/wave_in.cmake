voxtrel_test(
  wave_in_contract_test
  SOURCES wave_in_backends.cpp wave_in_contract_test.cpp
  DEPENDS voxtrel_headless
          voxtrel_headless_wave_in
          voxtrel_pulse
          voxtrel_sound_support
          voxtrel_wave_file
  LABELS "contract;threads")

voxtrel_test(
  pulse_wave_out_test
  SOURCES pulse_wave_out_test.cpp
  DEPENDS voxtrel_pulse voxtrel_sound_support
  LABELS "e2e;threads")

voxtrel_test(
  wave_player_pulse_test
  SOURCES wave_player_pulse_test.cpp
  DEPENDS voxtrel_audio
          voxtrel_headless
          voxtrel_headless_contacts
          voxtrel_headless_registry
          voxtrel_headless_wave_in
          voxtrel_posix
          voxtrel_pulse
          voxtrel_sound_support
  LABELS "e2e;threads")
target_compile_definitions(wave_player_pulse_test
                           PRIVATE VOXTREL_SAMPLES_DIR="${PROJECT_SOURCE_DIR}/samples")

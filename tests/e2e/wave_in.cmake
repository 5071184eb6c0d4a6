# What end-to-end tests need of sound: a session and a server of their own, a microphone, an ear,
# speech.
voxtrel_library(
  sound_support
  SOURCES ear.cpp
          pipe_microphone.cpp
          playing.cpp
          pulse_server.cpp
          recording.cpp
          sound_session.cpp
          speech.cpp
          unix_socket.cpp
  DEPENDS voxtrel_platform voxtrel_pulse voxtrel_test_support GTest::gtest)

voxtrel_test(
  pulse_wave_in_test
  SOURCES pulse_wave_in_test.cpp
  DEPENDS voxtrel_pulse voxtrel_sound_support
  LABELS "e2e;threads")

voxtrel_test(
  wave_device_pulse_test
  SOURCES wave_device_pulse_test.cpp
  DEPENDS voxtrel_audio
          voxtrel_headless
          voxtrel_headless_contacts
          voxtrel_headless_registry
          voxtrel_posix
          voxtrel_pulse
          voxtrel_sound_support
  LABELS "e2e;threads")

voxtrel_test(
  record_command_pulse_test
  SOURCES record_command_pulse_test.cpp
  DEPENDS voxtrel_sound_support
  LABELS e2e)
target_compile_definitions(record_command_pulse_test
                           PRIVATE VOXTREL_PROGRAM="$<TARGET_FILE:voxtrel>")
add_dependencies(record_command_pulse_test voxtrel)

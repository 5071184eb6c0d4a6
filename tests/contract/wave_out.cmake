voxtrel_test(wave_out_contract_test SOURCES wave_out_backends.cpp wave_out_contract_test.cpp DEPENDS
                 voxtrel_headless voxtrel_pulse voxtrel_sound_support voxtrel_wave_file LABELS
             "contract;threads")

#include "applet/late_sound.h"

#include <cstdio>
#include <string>

#include "backends/loading/loaded_library.h"
#include "backends/pulse/quiet_library.h"
#include "backends/text/printable.h"
#include "platform/sound_library.h"

namespace applet {
namespace {

using platform::WaveResult;

/// Null where the library cannot be loaded.
template <typename Function, typename Interface>
void LoadSound(const char* door, const char* what, std::unique_ptr<Interface>& made) {
  const loading::LoadedFunction found = loading::LoadDoor(platform::kSoundLibrary, "pulse", door);
  if (found.address == nullptr) {
    const std::string line = std::string("voxtrel: no ") + what + ": " + found.reason + '\n';
    static_cast<void>(std::fputs(text::Printable(line).c_str(), stderr));
    return;
  }
  reinterpret_cast<Function*>(found.address)(made);
}

}  // namespace

LateWaveIn::LateWaveIn() { pulse::KeepLibraryQuiet(); }

std::uint32_t LateWaveIn::GetDeviceCount() {
  platform::WaveIn* const found = Find();
  return found == nullptr ? 0 : found->GetDeviceCount();
}

platform::OpenedWaveIn LateWaveIn::Open(const platform::WaveFormat& format) {
  platform::WaveIn* const found = Find();
  return found == nullptr ? platform::OpenedWaveIn{nullptr, WaveResult::kNoDevice}
                          : found->Open(format);
}

platform::WaveIn* LateWaveIn::Find() {
  const std::lock_guard lock(m_mutex);
  if (!m_wasTried) {
    LoadSound<platform::MakeWaveInFunction>(platform::kMakeWaveInName, "microphone", m_found);
    m_wasTried = true;
  }
  return m_found.get();
}

LateWaveOut::LateWaveOut() { pulse::KeepLibraryQuiet(); }

platform::OpenedWaveOut LateWaveOut::Open(const platform::WaveFormat& format) {
  const std::lock_guard lock(m_mutex);
  if (!m_wasTried) {
    LoadSound<platform::MakeWaveOutFunction>(platform::kMakeWaveOutName, "loudspeaker", m_found);
    m_wasTried = true;
  }
  return m_found ? m_found->Open(format) : platform::OpenedWaveOut{nullptr, WaveResult::kNoDevice};
}

}  // namespace applet

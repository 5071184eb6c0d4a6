#pragma once

#include <memory>
#include <mutex>

#include "platform/wave_in.h"
#include "platform/wave_out.h"

namespace applet {

// The sound server's devices. Its library, which most of what the program does has no need of, is
// loaded when one of them is first asked for anything, on whichever thread that is; where it cannot
// be loaded there is no device, and standard error tells why. Made while the process has one
// thread: the library's manners are set by the environment.
//
// This is a mutex and not std::call_once. If memory runs out, an exception would pass through the C
// library, which would have to load the unwinder first: that ends the process.

class LateWaveIn final : public platform::WaveIn {
 public:
  LateWaveIn();

  [[nodiscard]] std::uint32_t GetDeviceCount() override;
  [[nodiscard]] platform::OpenedWaveIn Open(const platform::WaveFormat& format) override;

 private:
  /// Null without the library.
  [[nodiscard]] platform::WaveIn* Find();

  std::mutex m_mutex;
  bool m_wasTried = false;
  std::unique_ptr<platform::WaveIn> m_found;
};

class LateWaveOut final : public platform::WaveOut {
 public:
  LateWaveOut();

  [[nodiscard]] platform::OpenedWaveOut Open(const platform::WaveFormat& format) override;

 private:
  std::mutex m_mutex;
  bool m_wasTried = false;
  std::unique_ptr<platform::WaveOut> m_found;
};

}  // namespace applet

#include "tests/e2e/watched_wave_in.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "tests/e2e/recording.h"

namespace e2e {

using platform::WaveHeader;
using platform::WaveInDevice;
using platform::WaveResult;

class WatchedWaveIn::Device final : public WaveInDevice {
 public:
  Device(const WatchedWaveIn& watched, std::unique_ptr<WaveInDevice> device)
      : m_watched(watched), m_device(std::move(device)) {}

  [[nodiscard]] WaveResult Prepare(WaveHeader& header) override {
    return m_device->Prepare(header);
  }

  [[nodiscard]] WaveResult AddBuffer(WaveHeader& header) override {
    m_queued = &header;
    return m_device->AddBuffer(header);
  }

  [[nodiscard]] WaveResult Start() override {
    const WaveResult result = m_device->Start();
    if (result == WaveResult::kOk && m_watched.m_action) {
      EXPECT_TRUE(AwaitBytes(*m_device, *m_queued, m_watched.m_bytes));
      m_watched.m_action();
    }
    return result;
  }

  [[nodiscard]] WaveResult Unprepare(WaveHeader& header) override {
    return m_watched.m_waitsForStragglers ? UnprepareWhilePlaying(*m_device, header)
                                          : m_device->Unprepare(header);
  }

  [[nodiscard]] WaveResult Reset() override { return m_device->Reset(); }
  [[nodiscard]] WaveResult Close() override { return m_device->Close(); }

 private:
  const WatchedWaveIn& m_watched;
  const std::unique_ptr<WaveInDevice> m_device;
  WaveHeader* m_queued = nullptr;
};

void WatchedWaveIn::ActAfter(std::uint32_t bytes, std::function<void()> action) {
  m_bytes = bytes;
  m_action = std::move(action);
}

platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult> WatchedWaveIn::Open(
    const platform::WaveFormat& format) {
  auto opened = m_input.Open(format);
  if (opened) opened = std::make_unique<Device>(*this, std::move(*opened));
  return opened;
}

}  // namespace e2e

#include "tests/support/failing_wave.h"

#include <memory>
#include <utility>

namespace support {
namespace {

using platform::WaveHeader;
using platform::WaveResult;

class FailingInDevice final : public platform::WaveInDevice {
 public:
  FailingInDevice(FaultPlan& plan, std::unique_ptr<platform::WaveInDevice> device)
      : m_plan(plan), m_device(std::move(device)) {}

  WaveResult Prepare(WaveHeader& header) override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->Prepare(header);
  }
  WaveResult AddBuffer(WaveHeader& header) override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->AddBuffer(header);
  }
  WaveResult Start() override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->Start();
  }
  WaveResult Unprepare(WaveHeader& header) override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->Unprepare(header);
  }
  WaveResult Reset() override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->Reset();
  }
  WaveResult Close() override {
    const bool fails = m_plan.NextFails();
    const WaveResult result = m_device->Close();
    return fails ? WaveResult::kFailed : result;
  }

 private:
  FaultPlan& m_plan;
  const std::unique_ptr<platform::WaveInDevice> m_device;
};

class FailingOutDevice final : public platform::WaveOutDevice {
 public:
  FailingOutDevice(FaultPlan& plan, std::unique_ptr<platform::WaveOutDevice> device)
      : m_plan(plan), m_device(std::move(device)) {}

  WaveResult Prepare(WaveHeader& header) override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->Prepare(header);
  }
  WaveResult Write(WaveHeader& header) override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->Write(header);
  }
  WaveResult Unprepare(WaveHeader& header) override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->Unprepare(header);
  }
  WaveResult Reset() override {
    return m_plan.NextFails() ? WaveResult::kFailed : m_device->Reset();
  }
  WaveResult Close() override {
    const bool fails = m_plan.NextFails();
    const WaveResult result = m_device->Close();
    return fails ? WaveResult::kFailed : result;
  }

 private:
  FaultPlan& m_plan;
  const std::unique_ptr<platform::WaveOutDevice> m_device;
};

}  // namespace

std::uint32_t FailingWaveIn::GetDeviceCount() {
  return m_plan.NextFails() ? 0 : m_waveIn.GetDeviceCount();
}

platform::Result<std::unique_ptr<platform::WaveInDevice>, platform::WaveResult> FailingWaveIn::Open(
    const platform::WaveFormat& format) {
  if (m_plan.NextFails()) {
    return platform::Failure(WaveResult::kFailed);
  }
  auto opened = m_waveIn.Open(format);
  if (opened) {
    opened = std::make_unique<FailingInDevice>(m_plan, std::move(*opened));
  }
  return opened;
}

platform::Result<std::unique_ptr<platform::WaveOutDevice>, platform::WaveResult>
FailingWaveOut::Open(const platform::WaveFormat& format) {
  if (m_plan.NextFails()) {
    return platform::Failure(WaveResult::kFailed);
  }
  auto opened = m_waveOut.Open(format);
  if (opened) {
    opened = std::make_unique<FailingOutDevice>(m_plan, std::move(*opened));
  }
  return opened;
}

}  // namespace support

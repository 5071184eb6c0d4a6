#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "audio/wave_device.h"
#include "platform/platform.h"

namespace tags {

/// One recording, as its worker does it. It shares nothing with the page: if a worker takes too
/// long, the page goes on without it, and may use a new device, or be gone, while this one still
/// runs.
class UtteranceRecording {
 public:
  /// What `platform` refers to outlives the recording. Nobody else touches `device` while it runs.
  UtteranceRecording(const platform::Platform& platform, std::shared_ptr<audio::WaveDevice> device,
                     std::u16string path)
      : m_platform(platform), m_device(std::move(device)), m_path(std::move(path)) {}

  /// Records three seconds. If that fails the user sees the code and the process ends. Throws
  /// nothing: it is the whole of a thread.
  void Run() noexcept;

  /// Returns whether the process was to end. Then nothing may be done any more. May be called from
  /// any thread.
  [[nodiscard]] bool HasEndedProcess() const { return GetCode() != audio::kRecorded; }

  /// Returns the recorder's answer, and kRecorded as long as there is none. May be called from any
  /// thread.
  [[nodiscard]] int GetCode() const { return m_code; }
  /// Returns why there is no file, after kFileNotCreated. Returns nothing otherwise.
  [[nodiscard]] std::optional<platform::FileError> GetFileError() const {
    return GetCode() == audio::kFileNotCreated ? m_device->GetFileError() : std::nullopt;
  }

 private:
  void ShowCode() const;

  const platform::Platform m_platform;
  const std::shared_ptr<audio::WaveDevice> m_device;
  const std::u16string m_path;
  std::atomic<int> m_code = audio::kRecorded;
};

}  // namespace tags

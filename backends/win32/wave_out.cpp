#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "backends/win32/wave_format.h"
#include "backends/win32/win32_sound.h"

namespace win32 {
namespace {

using platform::WaveHeader;
using platform::WaveResult;

/// A sound that has not ended so long after its own length never will. The wave functions do not
/// report that the output went away.
constexpr ULONGLONG kNeverHeardAfter = 3000;  // Milliseconds.
constexpr ULONGLONG kMillisecondsPerSecond = 1000;

class Player final : public platform::WaveOutDevice {
 public:
  Player(HWAVEOUT device, const WAVEFORMATEX& format) : m_device(device), m_format(format) {}
  ~Player() override { static_cast<void>(Close()); }
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  [[nodiscard]] WaveResult Prepare(WaveHeader& header) override {
    return m_device == nullptr ? WaveResult::kNoDevice : m_queue.Prepare(header);
  }

  [[nodiscard]] WaveResult Write(WaveHeader& header) override {
    if (m_device == nullptr) {
      return WaveResult::kNoDevice;
    }
    const WaveResult added = m_queue.Add(header);
    if (added != WaveResult::kOk) {
      return added;
    }
    const WaveResult written = Play(header);
    if (written != WaveResult::kOk) {
      m_queue.Drop();
    }
    return written;
  }

  [[nodiscard]] WaveResult Unprepare(WaveHeader& header) override {
    if (m_device == nullptr) {
      return WaveResult::kNoDevice;
    }
    if (m_queue.Holds(header)) {
      if (!IsHeard()) {
        return ::GetTickCount64() > m_deadline ? WaveResult::kNoDevice : WaveResult::kStillPlaying;
      }
      Release();
    }
    m_queue.Release(header);
    return WaveResult::kOk;
  }

  [[nodiscard]] WaveResult Reset() override {
    if (m_device == nullptr) {
      return WaveResult::kNoDevice;
    }
    const WaveResult result = ToResult(waveOutReset(m_device));
    Release();
    m_queue.Drop();
    return result;
  }

  [[nodiscard]] WaveResult Close() override {
    if (m_device != nullptr) {
      static_cast<void>(Reset());
      waveOutClose(std::exchange(m_device, nullptr));
    }
    return WaveResult::kOk;
  }

 private:
  [[nodiscard]] WaveResult Play(const WaveHeader& header) {
    const std::uint32_t bytes = header.bufferLength / m_format.nBlockAlign * m_format.nBlockAlign;
    m_sound.reset();
    if (bytes == 0) {
      return WaveResult::kOk;
    }
    try {
      const auto* const first = reinterpret_cast<const char*>(header.data);
      m_sound = std::make_unique<Sound>();
      m_sound->bytes.assign(first, first + bytes);
    } catch (const std::bad_alloc&) {
      return WaveResult::kFailed;
    }
    m_sound->header.lpData = m_sound->bytes.data();
    m_sound->header.dwBufferLength = bytes;
    m_deadline = ::GetTickCount64() + kNeverHeardAfter +
                 kMillisecondsPerSecond * bytes / m_format.nAvgBytesPerSec;
    MMRESULT result = waveOutPrepareHeader(m_device, &m_sound->header, sizeof(WAVEHDR));
    if (result == MMSYSERR_NOERROR) {
      result = waveOutWrite(m_device, &m_sound->header, sizeof(WAVEHDR));
    }
    if (result != MMSYSERR_NOERROR) {
      Release();
    }
    return ToResult(result);
  }

  /// The device's thread sets the flag.
  [[nodiscard]] bool IsHeard() const {
    return !m_sound ||
           (*static_cast<const volatile DWORD*>(&m_sound->header.dwFlags) & WHDR_DONE) != 0;
  }

  /// Takes the sound back. If the device keeps it, it may read it at any time, even after it was
  /// closed. So nobody ever frees such a sound.
  void Release() {
    if (m_sound &&
        waveOutUnprepareHeader(m_device, &m_sound->header, sizeof(WAVEHDR)) != MMSYSERR_NOERROR) {
      static_cast<void>(m_sound.release());
    }
    m_sound.reset();
  }

  /// What the device gets. The caller's memory is free after Close, whatever the device does.
  struct Sound {
    WAVEHDR header{};  ///< The system's own for the queued one.
    std::vector<char> bytes;
  };

  HWAVEOUT m_device;  ///< Null after Close.
  const WAVEFORMATEX m_format;
  platform::WaveQueue m_queue;
  std::unique_ptr<Sound> m_sound;  ///< Null if the device has none.
  ULONGLONG m_deadline = 0;
};

}  // namespace

platform::Result<std::unique_ptr<platform::WaveOutDevice>, WaveResult> Win32WaveOut::Open(
    const platform::WaveFormat& format) {
  if (!platform::IsWholeBytePcm(format)) {
    return platform::Failure(WaveResult::kBadFormat);
  }
  const WAVEFORMATEX wanted = ToSystem(format);
  HWAVEOUT device = nullptr;
  const MMRESULT result = waveOutOpen(&device, WAVE_MAPPER, &wanted, 0, 0, CALLBACK_NULL);
  if (result != MMSYSERR_NOERROR) {
    return platform::Failure(ToResult(result));
  }
  return std::make_unique<Player>(device, wanted);
}

}  // namespace win32

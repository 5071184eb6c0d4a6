#include <chrono>
#include <utility>

#include "backends/win32/wave_format.h"
#include "backends/win32/win32_sound.h"

namespace win32 {
namespace {

using platform::WaveHeader;
using platform::WaveResult;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// A sound that has not ended so long after its own length never will. The wave functions do not
/// report that the output went away.
constexpr milliseconds kNeverHeardAfter(3000);
constexpr std::uint64_t kMillisecondsPerSecond = 1000;

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
        return steady_clock::now() > m_deadline ? WaveResult::kNoDevice : WaveResult::kStillPlaying;
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
    m_header = WAVEHDR{};
    m_header.lpData = reinterpret_cast<char*>(header.data);
    m_header.dwBufferLength = bytes;
    if (bytes == 0) {
      m_header.dwFlags = WHDR_DONE;
      return WaveResult::kOk;
    }
    m_deadline = steady_clock::now() + kNeverHeardAfter +
                 milliseconds(kMillisecondsPerSecond * bytes / m_format.nAvgBytesPerSec);
    MMRESULT result = waveOutPrepareHeader(m_device, &m_header, sizeof(m_header));
    if (result == MMSYSERR_NOERROR) {
      result = waveOutWrite(m_device, &m_header, sizeof(m_header));
      if (result != MMSYSERR_NOERROR) {
        Release();
      }
    }
    return ToResult(result);
  }

  /// The device's thread sets the flag.
  [[nodiscard]] bool IsHeard() const {
    return (*static_cast<const volatile DWORD*>(&m_header.dwFlags) & WHDR_DONE) != 0;
  }

  void Release() { waveOutUnprepareHeader(m_device, &m_header, sizeof(m_header)); }

  HWAVEOUT m_device;  ///< Null after Close.
  const WAVEFORMATEX m_format;
  platform::WaveQueue m_queue;
  WAVEHDR m_header{};  ///< The system's own header for the queued one.
  steady_clock::time_point m_deadline;
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

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "backends/win32/system_calls.h"
#include "backends/win32/wave_format.h"
#include "backends/win32/win32_sound.h"

namespace win32 {
namespace {

using platform::WaveHeader;
using platform::WaveResult;
/// An input that has delivered nothing for so long delivers nothing more. The wave functions do not
/// report that it went away.
constexpr ULONGLONG kLostAfter = 1000;  // Milliseconds, as all times below.
/// For an input that has to wake up. One that delivers nothing at all must not hold up the
/// recording any longer.
constexpr ULONGLONG kWarmUpLimit = 1000;
constexpr DWORD kWarmUpPoll = 5;
/// Parts of a second in which sound is taken from the system, and how long one lasts.
constexpr std::uint32_t kPieces = 20;
constexpr ULONGLONG kPiece = 1000 / kPieces;
constexpr WORD kRecordedBits = 16;

/// Memory that the system fills, in pieces. The system gives back one piece after the other, and so
/// what has arrived is known before all has.
class Pieces {
 public:
  /// Hands `bytes` of new memory to the device, which has none of the old.
  [[nodiscard]] WaveResult Queue(HWAVEIN device, std::uint32_t bytes, std::uint32_t pieceBytes) {
    try {
      m_memory = std::make_unique<Memory>();
      m_memory->bytes.resize(bytes);
      m_memory->headers.resize((bytes + pieceBytes - 1) / pieceBytes);
    } catch (const std::bad_alloc&) {
      return WaveResult::kFailed;
    }
    std::uint32_t at = 0;
    for (WAVEHDR& header : m_memory->headers) {
      header.lpData = m_memory->bytes.data() + at;
      header.dwBufferLength = std::min(pieceBytes, bytes - at);
      at += header.dwBufferLength;
      MMRESULT result = waveInPrepareHeader(device, &header, sizeof(header));
      if (result == MMSYSERR_NOERROR) {
        result = waveInAddBuffer(device, &header, sizeof(header));
      }
      if (result != MMSYSERR_NOERROR) {
        return ToResult(result);
      }
    }
    return WaveResult::kOk;
  }

  /// Returns how many bytes have arrived.
  [[nodiscard]] std::uint32_t CountArrived() const {
    if (!m_memory) {
      return 0;
    }
    std::uint32_t arrived = 0;
    for (const WAVEHDR& header : m_memory->headers) {
      // The device's thread sets the flag after all else.
      if ((*static_cast<const volatile DWORD*>(&header.dwFlags) & WHDR_DONE) == 0) {
        break;
      }
      arrived += header.dwBytesRecorded;
      if (header.dwBytesRecorded < header.dwBufferLength) {
        break;  // The end of a recording that was stopped.
      }
    }
    return arrived;
  }

  /// Copies what has arrived.
  void CopyTo(WaveHeader& header) const {
    header.bytesRecorded = std::min(CountArrived(), header.bufferLength);
    if (header.bytesRecorded > 0) {
      std::memcpy(header.data, m_memory->bytes.data(), header.bytesRecorded);
    }
  }

  /// Takes the memory back. If the device keeps a piece, it may write there at any time, even after
  /// it was closed. So nobody ever frees such memory.
  void Release(HWAVEIN device) {
    if (!m_memory) {
      return;
    }
    bool isGivenUp = true;
    for (WAVEHDR& header : m_memory->headers) {
      isGivenUp =
          waveInUnprepareHeader(device, &header, sizeof(header)) == MMSYSERR_NOERROR && isGivenUp;
    }
    if (!isGivenUp) {
      static_cast<void>(m_memory.release());
    }
    m_memory.reset();
  }

 private:
  struct Memory {
    std::vector<char> bytes;
    std::vector<WAVEHDR> headers;
  };

  std::unique_ptr<Memory> m_memory;  ///< Null if there is none.
};

/// An open input. It runs from the beginning, so that it is warm; what it hears before Start goes
/// nowhere, since the system has no memory for it. The header of the user gets its bytes within the
/// user's calls.
class Recorder final : public platform::WaveInDevice {
 public:
  Recorder(HWAVEIN device, const WAVEFORMATEX& format)
      : m_device(device), m_pieceBytes(format.nSamplesPerSec / kPieces * format.nBlockAlign) {}
  ~Recorder() override { static_cast<void>(Close()); }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  /// Returns after the first sound, or after a limit.
  [[nodiscard]] WaveResult WarmUp() {
    WaveResult result = m_pieces.Queue(m_device, m_pieceBytes, m_pieceBytes);
    if (result == WaveResult::kOk) {
      result = ToResult(waveInStart(m_device));
    }
    if (result != WaveResult::kOk) {
      return result;
    }
    const ULONGLONG deadline = ::GetTickCount64() + kWarmUpLimit;
    while (m_pieces.CountArrived() == 0 && ::GetTickCount64() < deadline) {
      ::Sleep(kWarmUpPoll);
    }
    if (m_pieces.CountArrived() == 0) {
      return Stop();
    }
    m_pieces.Release(m_device);
    m_isRunning = true;
    return WaveResult::kOk;
  }

  [[nodiscard]] WaveResult Prepare(WaveHeader& header) override {
    return m_device == nullptr ? WaveResult::kNoDevice : m_queue.Prepare(header);
  }

  [[nodiscard]] WaveResult AddBuffer(WaveHeader& header) override {
    return m_device == nullptr ? WaveResult::kNoDevice : m_queue.Add(header);
  }

  [[nodiscard]] WaveResult Start() override {
    if (m_device == nullptr) {
      return WaveResult::kNoDevice;
    }
    const WaveHeader* const header = m_queue.Queued();
    if (header == nullptr) {
      return WaveResult::kNotPrepared;
    }
    if (m_isStarted) {
      return WaveResult::kOk;
    }
    WaveResult result = m_pieces.Queue(m_device, header->bufferLength, m_pieceBytes);
    if (result == WaveResult::kOk && !m_isRunning) {
      result = ToResult(waveInStart(m_device));
    }
    if (result != WaveResult::kOk) {
      static_cast<void>(Stop());
      return result;
    }
    m_isRunning = true;
    m_isStarted = true;
    m_lastArrived = 0;
    m_lastTime = m_lastAsked = ::GetTickCount64();
    return WaveResult::kOk;
  }

  [[nodiscard]] WaveResult Unprepare(WaveHeader& header) override {
    if (m_device == nullptr) {
      return WaveResult::kNoDevice;
    }
    if (!m_queue.Holds(header)) {
      m_queue.Release(header);
      return WaveResult::kOk;
    }
    if (!m_isStarted) {
      return WaveResult::kStillPlaying;
    }
    m_pieces.CopyTo(header);
    if (header.bytesRecorded == header.bufferLength) {
      m_pieces.Release(m_device);
      m_isStarted = false;
      m_queue.Release(header);
      return WaveResult::kOk;
    }
    const std::uint32_t more =
        header.bytesRecorded - std::exchange(m_lastArrived, header.bytesRecorded);
    const ULONGLONG now = ::GetTickCount64();
    const ULONGLONG asked = std::exchange(m_lastAsked, now);
    if (more > 0) {
      // It came since the last call. If that is long ago, the input may be gone since then: it is
      // not known to have delivered for longer than what came lasts.
      m_lastTime = std::clamp(m_lastTime + ULONGLONG{more} * kPiece / m_pieceBytes, asked, now);
    }
    return now - m_lastTime > kLostAfter ? WaveResult::kNoDevice : WaveResult::kStillPlaying;
  }

  [[nodiscard]] WaveResult Reset() override {
    if (m_device == nullptr) {
      return WaveResult::kNoDevice;
    }
    WaveHeader* const header = m_queue.Queued();
    const WaveResult result = ToResult(waveInReset(m_device));
    m_isRunning = false;
    if (header != nullptr && m_isStarted) {
      m_pieces.CopyTo(*header);
    }
    m_pieces.Release(m_device);
    m_isStarted = false;
    m_queue.Drop();
    return result;
  }

  [[nodiscard]] WaveResult Close() override {
    if (m_device != nullptr) {
      static_cast<void>(Stop());
      waveInClose(std::exchange(m_device, nullptr));
      m_queue.Drop();
    }
    return WaveResult::kOk;
  }

 private:
  [[nodiscard]] WaveResult Stop() {
    const WaveResult result = ToResult(waveInReset(m_device));
    m_pieces.Release(m_device);
    m_isRunning = false;
    m_isStarted = false;
    return result;
  }

  HWAVEIN m_device;  ///< Null after Close.
  const std::uint32_t m_pieceBytes;
  platform::WaveQueue m_queue;
  Pieces m_pieces;
  bool m_isRunning = false;  ///< The device takes memory as soon as there is some.
  bool m_isStarted = false;  ///< Into the queued header.
  std::uint32_t m_lastArrived = 0;
  ULONGLONG m_lastAsked = 0;
  ULONGLONG m_lastTime = 0;  ///< When the input is known to have delivered.
};

struct Input {
  UINT number = 0;
  std::u16string name;

  friend bool operator==(const Input&, const Input&) = default;
};

/// Returns whether this is no input by itself. Wine lists one that stands for the default of the
/// sound server, and the outputs that can be listened to.
[[nodiscard]] bool IsNoRealInput(std::u16string_view name) {
  return name == u"PulseAudio" || name.starts_with(u"Monitor of ");
}

/// Returns the real inputs, in the order of the system.
[[nodiscard]] std::vector<Input> ListInputs() {
  std::vector<Input> inputs;
  for (UINT i = 0; i < waveInGetNumDevs(); ++i) {
    WAVEINCAPSW about{};
    if (waveInGetDevCapsW(i, &about, sizeof(about)) == MMSYSERR_NOERROR &&
        !IsNoRealInput(FromWide(about.szPname))) {
      inputs.push_back({i, std::u16string(FromWide(about.szPname))});
    }
  }
  return inputs;
}

/// Returns the number of the chosen input. Returns the system's default if it is not there.
[[nodiscard]] UINT FindChosen(const std::vector<Input>& inputs, const ChosenInput& getChosen) {
  const std::u16string chosen = getChosen ? getChosen() : std::u16string();
  const auto found = std::ranges::find(inputs, chosen, &Input::name);
  return chosen.empty() || found == inputs.end() ? WAVE_MAPPER : found->number;
}

/// Calls `changed` when the names of the inputs are other ones than a second ago.
class PollingWatch final : public platform::WaveInputs::Watch {
 public:
  explicit PollingWatch(std::function<void()> changed)
      : m_thread([changed = std::move(changed)](const std::stop_token& stop) {
          std::mutex mutex;
          std::condition_variable_any wakeUp;
          auto inputs = ListInputs();
          std::unique_lock lock(mutex);
          while (!stop.stop_requested()) {
            wakeUp.wait_for(lock, stop, std::chrono::seconds(1), [] { return false; });
            const auto before = std::exchange(inputs, ListInputs());
            if (before != inputs && !stop.stop_requested()) {
              changed();
            }
          }
        }) {}

 private:
  std::jthread m_thread;
};

}  // namespace

std::uint32_t Win32WaveIn::GetDeviceCount() {
  return static_cast<std::uint32_t>(ListInputs().size());
}

platform::Result<std::unique_ptr<platform::WaveInDevice>, WaveResult> Win32WaveIn::Open(
    const platform::WaveFormat& format) {
  if (!platform::IsWholeBytePcm(format) || format.bitsPerSample != kRecordedBits) {
    return platform::Failure(WaveResult::kBadFormat);
  }
  const auto inputs = ListInputs();
  if (inputs.empty()) {
    return platform::Failure(WaveResult::kNoDevice);
  }
  const WAVEFORMATEX wanted = ToSystem(format);
  HWAVEIN device = nullptr;
  const MMRESULT result =
      waveInOpen(&device, FindChosen(inputs, m_getChosen), &wanted, 0, 0, CALLBACK_NULL);
  if (result != MMSYSERR_NOERROR) {
    return platform::Failure(ToResult(result));
  }
  auto recorder = std::make_unique<Recorder>(device, wanted);
  const WaveResult warm = recorder->WarmUp();
  if (warm != WaveResult::kOk) {
    return platform::Failure(warm);
  }
  return recorder;
}

platform::Result<std::vector<platform::WaveInput>, WaveResult> Win32WaveInputs::List() {
  const auto found = ListInputs();
  const UINT used = FindChosen(found, m_getChosen);
  std::vector<platform::WaveInput> inputs;
  for (const Input& input : found) {
    // The first one is the system's default.
    const bool isUsed = used == WAVE_MAPPER ? inputs.empty() : input.number == used;
    inputs.push_back({input.name, input.name, isUsed});
  }
  return inputs;
}

std::unique_ptr<platform::WaveInputs::Watch> Win32WaveInputs::StartWatch(
    std::function<void()> changed) {
  return std::make_unique<PollingWatch>(std::move(changed));
}

}  // namespace win32

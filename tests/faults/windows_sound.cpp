#include "tests/faults/windows_sound.h"

// It needs the header of the system.
#include <mmsystem.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/faults/windows_calls.h"

namespace faults {
namespace {

constexpr std::size_t kMostDevices = 4;
constexpr std::size_t kMostHeaders = 512;
constexpr ULONGLONG kMillisecondsPerSecond = 1000;
constexpr std::size_t kWaveHeaderBytes = 44;

/// Headers in order. It allocates nothing, since the watched memory is freed while it is locked.
class Headers {
 public:
  [[nodiscard]] bool IsEmpty() const { return m_count == 0; }
  [[nodiscard]] WAVEHDR& First() const { return *m_headers[0]; }
  [[nodiscard]] const WAVEHDR* const* begin() const { return m_headers.data(); }
  [[nodiscard]] const WAVEHDR* const* end() const { return m_headers.data() + m_count; }
  [[nodiscard]] bool Holds(const WAVEHDR* header) const {
    return std::find(begin(), end(), header) != end();
  }
  void Add(WAVEHDR* header) {
    if (m_count == kMostHeaders) {
      std::abort();
    }
    m_headers[m_count++] = header;
  }
  void Remove(const WAVEHDR* header) {
    WAVEHDR** const last = m_headers.data() + m_count;
    m_count =
        static_cast<std::size_t>(std::remove(m_headers.data(), last, header) - m_headers.data());
  }
  void Clear() { m_count = 0; }

 private:
  std::array<WAVEHDR*, kMostHeaders> m_headers{};
  std::size_t m_count = 0;
};

struct Device {
  bool isOpen = false;
  bool isInput = false;
  bool isRunning = false;
  DWORD bytesPerSecond = 0;
  DWORD blockAlign = 1;
  ULONGLONG byteMilliseconds = 0;  ///< Time that has made no whole block yet.
  std::size_t heard = 0;           ///< Of an input: bytes of what there is to hear.
  DWORD ofFirst = 0;               ///< Bytes of the first header that are done.
  Headers prepared;
  Headers queued;
};

std::array<Device, kMostDevices> g_devices;
volatile LONG g_preparedHeaders = 0;
SRWLOCK g_lock = SRWLOCK_INIT;

class Locked {
 public:
  Locked() { ::AcquireSRWLockExclusive(&g_lock); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  ~Locked() { ::ReleaseSRWLockExclusive(&g_lock); }
};

/// The samples of the wave file that the microphone hears.
const std::string& ToHear() {
  static const std::string kSamples = [] {
    const char* const path = std::getenv("VOXTREL_FAULT_MICROPHONE");
    std::ifstream file(path == nullptr ? "" : path, std::ios::binary);
    const std::string all((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    return all.substr(std::min(all.size(), kWaveHeaderBytes));
  }();
  return kSamples;
}

void Hear(Device& device, WAVEHDR& header, DWORD bytes) {
  const std::string& samples = ToHear();
  for (DWORD i = 0; i < bytes; ++i, ++device.heard) {
    header.lpData[header.dwBytesRecorded++] =
        device.heard < samples.size() ? samples[device.heard] : '\0';
  }
}

void Say(const char* sound, DWORD bytes) {
  const char* const path = std::getenv("VOXTREL_FAULT_LOUDSPEAKER");
  if (std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "ab")) {
    std::fwrite(sound, 1, bytes, file);
    std::fclose(file);
  }
}

void GiveBackFirst(Device& device) {
  WAVEHDR& header = device.queued.First();
  header.dwFlags = (header.dwFlags & ~DWORD{WHDR_INQUEUE}) | WHDR_DONE;
  device.queued.Remove(&header);
  device.ofFirst = 0;
}

void Work(Device& device, DWORD milliseconds) {
  device.byteMilliseconds += ULONGLONG{milliseconds} * device.bytesPerSecond;
  const ULONGLONG blocks = device.byteMilliseconds / kMillisecondsPerSecond / device.blockAlign;
  ULONGLONG bytes = blocks * device.blockAlign;
  device.byteMilliseconds -= bytes * kMillisecondsPerSecond;
  if (device.isInput) {
    const ULONGLONG most =
        ULONGLONG{MostThatIsHeard()} * device.bytesPerSecond / kMillisecondsPerSecond;
    bytes = std::min<ULONGLONG>(bytes, most - std::min<ULONGLONG>(most, device.heard));
  }
  while (bytes > 0 && !device.queued.IsEmpty() && !DevicesKeepHeaders()) {
    WAVEHDR& header = device.queued.First();
    const auto part =
        static_cast<DWORD>(std::min<ULONGLONG>(bytes, header.dwBufferLength - device.ofFirst));
    if (device.isInput) {
      Hear(device, header, part);
    } else {
      Say(header.lpData + device.ofFirst, part);
    }
    bytes -= part;
    device.ofFirst += part;
    if (device.ofFirst == header.dwBufferLength) {
      GiveBackFirst(device);
    }
  }
}

MMRESULT Open(bool isInput, void** handle, const WAVEFORMATEX& format) {
  const Locked locked;
  for (Device& device : g_devices) {
    if (!device.isOpen) {
      device = Device{};
      device.isOpen = true;
      device.isInput = isInput;
      device.isRunning = !isInput;
      device.bytesPerSecond = format.nAvgBytesPerSec;
      device.blockAlign = format.nBlockAlign;
      *handle = &device;
      return MMSYSERR_NOERROR;
    }
  }
  return MMSYSERR_ALLOCATED;
}

/// The calls that both kinds of devices have.
template <typename Handle>
struct Calls {
  static Device& Of(Handle handle) { return *reinterpret_cast<Device*>(handle); }

  static MMRESULT WINAPI Prepare(Handle handle, WAVEHDR* header, UINT /*size*/) {
    const Locked locked;
    Of(handle).prepared.Add(header);
    ::InterlockedIncrement(&g_preparedHeaders);
    header->dwFlags |= WHDR_PREPARED;
    return MMSYSERR_NOERROR;
  }

  static MMRESULT WINAPI Add(Handle handle, WAVEHDR* header, UINT /*size*/) {
    const Locked locked;
    Device& device = Of(handle);
    if (!device.prepared.Holds(header)) {
      return WAVERR_UNPREPARED;
    }
    if (device.queued.IsEmpty()) {
      device.heard = 0;
      device.byteMilliseconds = 0;
    }
    header->dwFlags = (header->dwFlags & ~DWORD{WHDR_DONE}) | WHDR_INQUEUE;
    header->dwBytesRecorded = 0;
    device.queued.Add(header);
    return MMSYSERR_NOERROR;
  }

  static MMRESULT WINAPI Reset(Handle handle) {
    const Locked locked;
    Device& device = Of(handle);
    device.isRunning = !device.isInput;
    while (!device.queued.IsEmpty() && !DevicesKeepHeaders()) {
      GiveBackFirst(device);
    }
    return MMSYSERR_NOERROR;
  }

  static MMRESULT WINAPI Unprepare(Handle handle, WAVEHDR* header, UINT /*size*/) {
    const Locked locked;
    Device& device = Of(handle);
    if (device.queued.Holds(header)) {
      return WAVERR_STILLPLAYING;
    }
    if (device.prepared.Holds(header)) {
      device.prepared.Remove(header);
      ::InterlockedDecrement(&g_preparedHeaders);
      header->dwFlags &= ~DWORD{WHDR_PREPARED};
    }
    return MMSYSERR_NOERROR;
  }

  static MMRESULT WINAPI Close(Handle handle) {
    const Locked locked;
    Device& device = Of(handle);
    if (!device.queued.IsEmpty()) {
      return WAVERR_STILLPLAYING;
    }
    for ([[maybe_unused]] const WAVEHDR* header : device.prepared) {
      ::InterlockedDecrement(&g_preparedHeaders);
    }
    device.prepared.Clear();
    device.isOpen = false;
    return MMSYSERR_NOERROR;
  }
};

UINT WINAPI CountInputs() { return 1; }

MMRESULT WINAPI DescribeInput(UINT_PTR /*number*/, WAVEINCAPSW* about, UINT /*size*/) {
  std::copy_n(L"Microphone", sizeof(L"Microphone") / sizeof(wchar_t), about->szPname);
  return MMSYSERR_NOERROR;
}

MMRESULT WINAPI OpenInput(HWAVEIN* device, UINT /*number*/, const WAVEFORMATEX* format,
                          DWORD_PTR /*callback*/, DWORD_PTR /*instance*/, DWORD /*flags*/) {
  static_cast<void>(ToHear());  // Before anything is locked.
  return Open(true, reinterpret_cast<void**>(device), *format);
}

MMRESULT WINAPI OpenOutput(HWAVEOUT* device, UINT /*number*/, const WAVEFORMATEX* format,
                           DWORD_PTR /*callback*/, DWORD_PTR /*instance*/, DWORD /*flags*/) {
  return Open(false, reinterpret_cast<void**>(device), *format);
}

MMRESULT WINAPI StartInput(HWAVEIN device) {
  const Locked locked;
  Calls<HWAVEIN>::Of(device).isRunning = true;
  return MMSYSERR_NOERROR;
}

/// Ends the process if a device has a header of this memory.
void Watch(const void* memory) {
  if (g_preparedHeaders == 0 || memory == nullptr) {
    return;
  }
  const auto* const first = static_cast<const char*>(memory);
  const char* const last = first + ::_msize(const_cast<void*>(memory));
  const auto isWithin = [&](const void* place) { return place >= first && place < last; };
  const Locked locked;
  for (const Device& device : g_devices) {
    for (const WAVEHDR* const header : device.prepared) {
      if (isWithin(header) || isWithin(header->lpData)) {
        std::fputs("faults: memory was freed that a wave device can still use\n", stderr);
        LeaveCalls();
        ::TerminateProcess(::GetCurrentProcess(), kExitOfFreed);
      }
    }
  }
}

}  // namespace

std::span<const Import> SoundCalls() {
  constexpr Sign kWave = Sign::kWaveError;
  using In = Calls<HWAVEIN>;
  using Out = Calls<HWAVEOUT>;
  static const std::array kImports{
      StandIn<"waveInGetNumDevs", Sign::kZero, "d">(&::waveInGetNumDevs, &CountInputs),
      StandIn<"waveInGetDevCapsW", kWave, "dn">(&::waveInGetDevCapsW, &DescribeInput),
      StandIn<"waveInOpen", kWave, "dtnb">(&::waveInOpen, &OpenInput),
      StandIn<"waveInPrepareHeader", kWave, "dn">(&::waveInPrepareHeader, &In::Prepare),
      StandIn<"waveInAddBuffer", kWave, "dn">(&::waveInAddBuffer, &In::Add),
      StandIn<"waveInStart", kWave, "dn">(&::waveInStart, &StartInput),
      StandIn<"waveInReset", kWave, "dn">(&::waveInReset, &In::Reset),
      StandIn<"waveInUnprepareHeader", kWave, "dnp">(&::waveInUnprepareHeader, &In::Unprepare),
      StandIn<"waveInClose", kWave, "dnp">(&::waveInClose, &In::Close),
      StandIn<"waveOutOpen", kWave, "dtnb">(&::waveOutOpen, &OpenOutput),
      StandIn<"waveOutPrepareHeader", kWave, "dn">(&::waveOutPrepareHeader, &Out::Prepare),
      StandIn<"waveOutWrite", kWave, "dn">(&::waveOutWrite, &Out::Add),
      StandIn<"waveOutReset", kWave, "dn">(&::waveOutReset, &Out::Reset),
      StandIn<"waveOutUnprepareHeader", kWave, "dnp">(&::waveOutUnprepareHeader, &Out::Unprepare),
      StandIn<"waveOutClose", kWave, "dnp">(&::waveOutClose, &Out::Close),
  };
  return kImports;
}

void LetDevicesWork(DWORD milliseconds) {
  const Locked locked;
  for (Device& device : g_devices) {
    if (device.isOpen && device.isRunning) {
      Work(device, milliseconds);
    }
  }
}

}  // namespace faults

// What the program frees.
void operator delete(void* memory) noexcept {
  faults::Watch(memory);
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept { ::operator delete(memory); }

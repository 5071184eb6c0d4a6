#include "backends/win32/win32_threads.h"

#include <process.h>

#include <atomic>
#include <cstdint>
#include <memory>

#include "backends/text/names.h"
#include "backends/win32/system_calls.h"

namespace win32 {
namespace {

using platform::Failure;
using platform::ThreadError;
using platform::ThreadStart;
using platform::WaitResult;

static_assert(platform::kNoLimit == INFINITE, "a wait without limit is the same for the system");

WaitResult WaitFor(HANDLE object, std::uint32_t milliseconds) {
  switch (::WaitForSingleObject(object, milliseconds)) {
    case WAIT_OBJECT_0:
      return WaitResult::kSignalled;
    case WAIT_TIMEOUT:
      return WaitResult::kTimedOut;
    default:
      return WaitResult::kFailed;
  }
}

/// Belongs to the thread, which outlives its handle if it destroys the handle itself.
struct ThreadBody {
  std::function<void()> run;
  std::atomic<bool> isAbandoned = false;
};

unsigned __stdcall RunBody(void* state) {
  const std::unique_ptr<std::shared_ptr<ThreadBody>> body(
      static_cast<std::shared_ptr<ThreadBody>*>(state));
  if (!(*body)->isAbandoned) {
    (*body)->run();
  }
  // What the body holds goes while the thread still counts as running.
  (*body)->run = nullptr;
  return 0;
}

/// The system makes each thread suspended. One that is given up before it was resumed runs for a
/// moment, and its body does not.
class Win32Thread final : public platform::Thread {
 public:
  Win32Thread(Handle thread, unsigned id, std::shared_ptr<ThreadBody> body)
      : m_thread(std::move(thread)), m_id(id), m_body(std::move(body)) {}
  Win32Thread(const Win32Thread&) = delete;
  Win32Thread& operator=(const Win32Thread&) = delete;

  ~Win32Thread() override {
    if (::GetCurrentThreadId() == m_id) {
      return;
    }
    if (!m_isResumed.exchange(true)) {
      m_body->isAbandoned = true;
      ::ResumeThread(m_thread.Get());
    }
    static_cast<void>(WaitFor(m_thread.Get(), INFINITE));
  }

  void Resume() override {
    if (!m_isResumed.exchange(true)) {
      ::ResumeThread(m_thread.Get());
    }
  }

  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    return ::GetCurrentThreadId() == m_id ? WaitResult::kFailed
                                          : WaitFor(m_thread.Get(), milliseconds);
  }

 private:
  const Handle m_thread;
  const DWORD m_id;
  const std::shared_ptr<ThreadBody> m_body;
  std::atomic<bool> m_isResumed = false;
};

class Win32Event final : public platform::Event {
 public:
  explicit Win32Event(Handle event) : m_event(std::move(event)) {}

  void Set() override { ::SetEvent(m_event.Get()); }
  void Reset() override { ::ResetEvent(m_event.Get()); }
  [[nodiscard]] WaitResult Wait(std::uint32_t milliseconds) override {
    return WaitFor(m_event.Get(), milliseconds);
  }

 private:
  const Handle m_event;
};

/// The mutex is held as long as the handle is open. The system closes the handles of a process that
/// ends in any way.
class Win32Mutex final : public platform::NamedMutex {
 public:
  explicit Win32Mutex(Handle mutex) : m_mutex(std::move(mutex)) {}

 private:
  const Handle m_mutex;
};

platform::CreatedMutex MakeMutex(const std::u16string& name) {
  Handle mutex(::CreateMutexW(nullptr, FALSE, ToWide(name)));
  const DWORD error = ::GetLastError();
  // Another user's mutex is there, and closed to this one.
  if (error == ERROR_ALREADY_EXISTS || (!mutex.IsOpen() && error == ERROR_ACCESS_DENIED)) {
    return Failure(ThreadError::kHeld);
  }
  if (!mutex.IsOpen()) {
    return Failure(ThreadError::kRefused);
  }
  return std::make_unique<Win32Mutex>(std::move(mutex));
}

}  // namespace

// The system's limit for a name is 260 units, and a backslash in it would be the end of a folder of
// names. So the scope goes into a number: FNV-1a, 64 bits.
std::u16string NameOfObject(std::u16string_view scope, std::u16string_view name) {
  constexpr std::uint64_t kStart = 0xCBF29CE484222325;
  constexpr std::uint64_t kPrime = 0x100000001B3;
  constexpr std::u16string_view kDigits = u"0123456789abcdef";
  std::uint64_t hash = kStart;
  for (const char16_t unit : text::FoldName(scope)) {
    hash = (hash ^ (unit == u'/' ? u'\\' : unit)) * kPrime;
  }
  std::u16string object = u"Global\\Voxtrel-";
  constexpr unsigned kDigitBits = 4;
  for (unsigned shift = 64; shift != 0;) {
    shift -= kDigitBits;
    object += kDigits[hash >> shift & 0xFU];
  }
  return object + u'-' + std::u16string(name);
}

platform::StartedThread Win32Threads::Start(std::function<void()> body, ThreadStart start) {
  auto state = std::make_shared<ThreadBody>();
  state->run = std::move(body);
  auto owned = std::make_unique<std::shared_ptr<ThreadBody>>(state);
  unsigned id = 0;
  Handle thread(reinterpret_cast<HANDLE>(
      ::_beginthreadex(nullptr, 0, RunBody, owned.get(), CREATE_SUSPENDED, &id)));
  if (!thread.IsOpen()) {
    return Failure(ThreadError::kRefused);
  }
  static_cast<void>(owned.release());  // The thread has it now, also if it never runs its body.
  auto started = std::make_unique<Win32Thread>(std::move(thread), id, std::move(state));
  if (start == ThreadStart::kRunning) {
    started->Resume();
  }
  return started;
}

platform::CreatedEvent Win32Threads::CreateManualResetEvent() {
  Handle event(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
  if (!event.IsOpen()) {
    return Failure(ThreadError::kRefused);
  }
  return std::make_unique<Win32Event>(std::move(event));
}

platform::CreatedMutex Win32Threads::CreateNamedMutex(std::u16string_view name) {
  platform::CreatedMutex created = MakeMutex(NameOfObject(m_scope, name));
  if (m_onNamedMutex) {
    m_onNamedMutex(created);
  }
  return created;
}

std::uint32_t Win32Clock::GetTickCount() { return ::GetTickCount(); }

std::int64_t Win32Clock::GetUnixTime() {
  constexpr std::int64_t kTicksPerSecond = 10'000'000;
  constexpr std::int64_t kSecondsFrom1601To1970 = 11'644'473'600;
  FILETIME now{};
  ::GetSystemTimeAsFileTime(&now);
  const std::int64_t ticks =
      static_cast<std::int64_t>(now.dwHighDateTime) << 32 | std::int64_t{now.dwLowDateTime};
  return ticks / kTicksPerSecond - kSecondsFrom1601To1970;
}

// The system's sleep may end up to one tick of its timer before the time is over.
void Win32Clock::Sleep(std::uint32_t milliseconds) {
  const ULONGLONG end = ::GetTickCount64() + milliseconds;
  for (ULONGLONG now = ::GetTickCount64(); now < end; now = ::GetTickCount64()) {
    ::Sleep(static_cast<DWORD>(end - now));
  }
}

}  // namespace win32

#include "tests/e2e/pipe_microphone.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace e2e {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPace(5);
constexpr std::uint64_t kMicrosecondsPerSecond = 1000000;

}  // namespace

PipeMicrophone::PipeMicrophone(const std::filesystem::path& pipe, std::uint32_t rate,
                               std::uint16_t channels, std::vector<std::byte> background)
    : m_pipe(open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)),
      m_rate(rate),
      m_frameBytes(channels * sizeof(std::int16_t)),
      m_background(std::move(background)) {
  if (!m_pipe.IsOpen()) {
    ADD_FAILURE() << "Nobody reads the pipe " << pipe;
    return;
  }
  m_thread = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

PipeMicrophone::~PipeMicrophone() = default;

void PipeMicrophone::Hear(std::vector<std::byte> sound) {
  const std::lock_guard lock(m_mutex);
  m_sound = std::move(sound);
  m_soundAt = 0;
}

void PipeMicrophone::Run(const std::stop_token& stop) {
  // A server that is killed leaves the pipe without a reader; that must not end the test program.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  const Time begin = steady_clock::now();
  std::unique_lock lock(m_mutex);
  while (!stop.stop_requested()) {
    WriteDue(begin);
    m_wakeUp.wait_for(lock, stop, kPace, [] { return false; });
  }
}

void PipeMicrophone::WriteDue(Time begin) {
  const auto elapsed = std::chrono::duration_cast<microseconds>(steady_clock::now() - begin);
  const std::uint64_t due =
      static_cast<std::uint64_t>(elapsed.count()) * m_rate / kMicrosecondsPerSecond;
  std::array<std::byte, PIPE_BUF> memory{};
  while (m_framesWritten < due) {
    const std::uint64_t frames = std::min(due - m_framesWritten, memory.size() / m_frameBytes);
    const auto piece = std::span(memory).first(frames * m_frameBytes);
    NextPiece(piece);
    // Pieces of this size are taken whole or not at all. What nobody takes is lost: a microphone
    // does not wait.
    [[maybe_unused]] const auto written = write(m_pipe.Number(), piece.data(), piece.size());
    m_framesWritten += frames;
  }
}

void PipeMicrophone::NextPiece(std::span<std::byte> piece) {
  for (std::byte& to : piece) {
    if (m_soundAt < m_sound.size()) {
      to = m_sound[m_soundAt++];
    } else if (!m_background.empty()) {
      to = m_background[m_backgroundAt++ % m_background.size()];
    } else {
      to = std::byte{0};
    }
  }
}

}  // namespace e2e

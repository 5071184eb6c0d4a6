#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <thread>
#include <vector>

#include "tests/e2e/unix_socket.h"

namespace e2e {

/// Writes sound into a server's pipe at the pace of a real microphone, from a thread of its own.
class PipeMicrophone {
 public:
  /// Hears `background` again and again while nothing is said; without any, silence.
  PipeMicrophone(const std::filesystem::path& pipe, std::uint32_t rate, std::uint16_t channels,
                 std::vector<std::byte> background = {});
  PipeMicrophone(const PipeMicrophone&) = delete;
  PipeMicrophone& operator=(const PipeMicrophone&) = delete;
  ~PipeMicrophone();

  /// Hears `sound` from now on, once.
  void Hear(std::vector<std::byte> sound);

 private:
  using Time = std::chrono::steady_clock::time_point;

  void Run(const std::stop_token& stop);
  void WriteDue(Time begin);
  void NextPiece(std::span<std::byte> piece);

  const Descriptor m_pipe;
  const std::uint64_t m_rate;
  const std::uint64_t m_frameBytes;

  std::uint64_t m_framesWritten = 0;  ///< Of the thread, as is the next one.
  std::size_t m_backgroundAt = 0;
  const std::vector<std::byte> m_background;

  std::mutex m_mutex;
  std::condition_variable_any m_wakeUp;
  std::vector<std::byte> m_sound;
  std::size_t m_soundAt = 0;

  std::jthread m_thread;
};

}  // namespace e2e

#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace pulse {

/// What the stream has delivered, between the loop's thread, which puts it in, and the device's
/// user, who copies it out. May be called from any thread; holds its lock for no longer than a
/// copy takes.
class CaptureBuffer {
 public:
  /// Empties the buffer and gives it room for `capacity` bytes. Keeps nothing until Start. False
  /// where there is no memory for it.
  [[nodiscard]] bool Prepare(std::uint32_t capacity);

  /// Keeps what arrives from now on, until the buffer is full.
  void Start();

  /// Keeps nothing more, and gives up what is there.
  void Clear();

  /// Copies all that is there to the beginning of `into` and returns how many bytes that is.
  [[nodiscard]] std::uint32_t CopyTo(std::span<std::byte> into) const;

  void Append(std::span<const std::byte> bytes);
  void AppendSilence(std::size_t count);

  /// Nothing more will come.
  void Lose();
  [[nodiscard]] bool IsLost() const;

 private:
  /// How many of `count` more bytes are to be kept. Needs the lock.
  [[nodiscard]] std::size_t Room(std::size_t count) const;

  mutable std::mutex m_mutex;
  std::vector<std::byte> m_bytes;
  std::size_t m_capacity = 0;
  bool m_started = false;
  bool m_lost = false;
};

}  // namespace pulse

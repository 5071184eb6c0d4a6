#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "backends/pulse/connection.h"
#include "platform/wave_devices.h"

namespace pulse {

/// An input device: a record stream of the sound server, and what it has delivered.
///
/// Two threads meet in it. The loop's thread puts in what arrives (Take, TakeSilence, Lose), and
/// the device's user copies it out. What arrives is dropped until Start and then kept until the
/// queued buffer is full. It goes into the buffer's own memory only within the user's calls. The
/// lock between the two is held no longer than a copy takes, so neither waits for the server.
class Recorder final : public platform::WaveInDevice {
 public:
  /// A device that hears nothing until it is connected.
  Recorder() = default;
  ~Recorder() override = default;

  /// Records from the source of that name. The empty name is the server's default, which the user
  /// may have chosen for this program alone. The stream runs when this returns; its first sound may
  /// still take a while. After a failure this can only be destroyed.
  [[nodiscard]] Result<void> Connect(std::unique_ptr<Connection> connection,
                                     const std::string& source, const pa_sample_spec& sampleSpec,
                                     Deadline deadline);

  /// Waits until the source has delivered something or went away, until `deadline` at most.
  void AwaitSound(Deadline deadline);

  [[nodiscard]] platform::WaveResult Prepare(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult AddBuffer(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Start() override;
  [[nodiscard]] platform::WaveResult Unprepare(platform::WaveHeader& header) override;
  [[nodiscard]] platform::WaveResult Reset() override;
  [[nodiscard]] platform::WaveResult Close() override;

  /// Keeps as much of `bytes` as there is room for.
  void Take(std::span<const std::byte> bytes);
  /// Keeps `count` bytes of silence, as far as there is room.
  void TakeSilence(std::size_t count);
  /// Nothing more will come.
  void Lose();

 private:
  /// Returns how many of `count` more bytes are kept. Needs the lock.
  [[nodiscard]] std::size_t Room(std::size_t count) const;
  [[nodiscard]] bool IsLost() const;
  void CopyTo(platform::WaveHeader& header) const;
  /// Keeps nothing more, and gives up what is there.
  void Clear();

  static void OnReadable(pa_stream* stream, std::size_t byteCount, void* self);

  bool m_isOpen = true;
  platform::WaveQueue m_queue;

  mutable std::mutex m_mutex;
  std::vector<std::byte> m_bytes;
  std::size_t m_capacity = 0;
  bool m_isStarted = false;
  bool m_isLost = false;

  Answer m_delivered;
  // In this order, since the stream uses all of the above until it is gone.
  std::unique_ptr<Connection> m_connection;
  std::optional<Stream> m_stream;
};

}  // namespace pulse

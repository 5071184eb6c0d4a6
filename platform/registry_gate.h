#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/registry.h"

namespace platform {

/// The part of a registry's contract that concerns threads and groups. It lets calls in one at a
/// time, keeps other threads out while one has a group open, and remembers what doomed that group.
/// It knows no store, so every back end keeps the same contract.
class RegistryGate {
 public:
  /// A thread waits for `limit` at most until another thread's group ends.
  explicit RegistryGate(std::chrono::milliseconds limit) : m_limit(limit) {}

  /// Returns a lock, which the caller holds for one call. It is not held if another thread's group
  /// did not end in time.
  [[nodiscard]] std::unique_lock<std::mutex> Enter() {
    std::unique_lock lock(m_mutex);
    const auto free = [this] { return !m_groupIsOpen || m_owner == std::this_thread::get_id(); };
    if (!m_groupEnded.wait_for(lock, m_limit, free)) {
      lock.unlock();
    }
    return lock;
  }

  // The caller of the following holds that lock.

  /// Returns whether the calling thread has a group open.
  [[nodiscard]] bool GroupIsOpen() const { return m_groupIsOpen; }

  /// Returns what doomed the open group. Returns nothing if it is not doomed.
  [[nodiscard]] std::optional<RegistryError> Doom() const { return m_doom; }

  void SetDoom(RegistryError error) { m_doom = error; }

  void OpenGroup() {
    m_owner = std::this_thread::get_id();
    m_doom.reset();
    m_groupIsOpen = true;
  }

  void CloseGroup() {
    m_groupIsOpen = false;
    m_doom.reset();
    m_groupEnded.notify_all();
  }

 private:
  std::chrono::milliseconds m_limit;
  std::mutex m_mutex;
  std::condition_variable m_groupEnded;
  bool m_groupIsOpen = false;
  std::thread::id m_owner;
  std::optional<RegistryError> m_doom;
};

}  // namespace platform

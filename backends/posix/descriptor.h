#pragma once

#include <unistd.h>

#include <utility>

namespace posix {

/// An open file descriptor that is closed when it goes out of scope.
class Descriptor {
 public:
  static constexpr int kNone = -1;

  explicit Descriptor(int value = kNone) : m_value(value) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : m_value(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    Reset(other.Release());
    return *this;
  }
  ~Descriptor() { Reset(); }

  [[nodiscard]] int Get() const { return m_value; }
  [[nodiscard]] bool IsOpen() const { return m_value != kNone; }
  [[nodiscard]] int Release() { return std::exchange(m_value, kNone); }

  void Reset(int value = kNone) {
    const int old = std::exchange(m_value, value);
    if (old != kNone) {
      ::close(old);
    }
  }

 private:
  int m_value;
};

}  // namespace posix

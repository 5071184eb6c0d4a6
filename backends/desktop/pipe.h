#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <optional>
#include <utility>

namespace xdg {

/// One end of a pipe, closed when it goes out of scope.
class PipeEnd {
 public:
  explicit PipeEnd(int descriptor) : m_descriptor(descriptor) {}
  PipeEnd(PipeEnd&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, kNone)) {}
  PipeEnd(const PipeEnd&) = delete;
  PipeEnd& operator=(const PipeEnd&) = delete;
  PipeEnd& operator=(PipeEnd&&) = delete;
  ~PipeEnd() { Close(); }

  [[nodiscard]] int Get() const { return m_descriptor; }

  void Close() {
    const int descriptor = std::exchange(m_descriptor, kNone);
    if (descriptor != kNone) {
      ::close(descriptor);
    }
  }

 private:
  static constexpr int kNone = -1;

  int m_descriptor;
};

struct Pipe {
  PipeEnd read;
  PipeEnd write;

  /// A pipe that no other program inherits; nothing where the system has none to give.
  [[nodiscard]] static std::optional<Pipe> Make() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
      return std::nullopt;
    }
    return Pipe{PipeEnd(ends[0]), PipeEnd(ends[1])};
  }
};

}  // namespace xdg

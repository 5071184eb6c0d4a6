#pragma once

#include <filesystem>

namespace e2e {

/// An open file descriptor, closed at the end.
class Descriptor {
 public:
  explicit Descriptor(int number) : m_number(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  [[nodiscard]] int Number() const { return m_number; }
  [[nodiscard]] bool IsOpen() const { return m_number >= 0; }

 private:
  int m_number;
};

/// Whether somebody listens at `path`.
[[nodiscard]] bool CanConnect(const std::filesystem::path& path);

/// A listener who lets clients connect and never says a word.
class SilentListener {
 public:
  explicit SilentListener(const std::filesystem::path& path);

  [[nodiscard]] bool IsListening() const { return m_isListening; }

 private:
  Descriptor m_socket;
  bool m_isListening = false;
};

}  // namespace e2e

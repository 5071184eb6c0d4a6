#pragma once

#include <cstdint>
#include <ostream>
#include <string>

namespace support {

/// A file layer of SQLite that forwards to the system's and lets writing calls fail. What is to be
/// forced to the medium is only counted, since nothing here outlives the test. Registered under a
/// name for as long as the object lives; used by one thread, one object at a time.
class FaultyFileLayer {
 public:
  enum class Fault : std::uint8_t { kDiskFull, kWriteError };

  FaultyFileLayer();
  FaultyFileLayer(const FaultyFileLayer&) = delete;
  FaultyFileLayer& operator=(const FaultyFileLayer&) = delete;
  ~FaultyFileLayer();

  [[nodiscard]] std::string Name() const;

  /// Lets writing call `number` (from 1, counted from now on) and every later one fail.
  void FailFrom(std::uint32_t number, Fault fault);

  /// Lets every call fail that needs room for the index of the log, and no other.
  void FailIndex();

  /// Lets every call through again.
  void Heal();

  [[nodiscard]] bool HasFailed() const;

  /// How often something was forced to the medium so far.
  [[nodiscard]] std::uint32_t CountSyncs() const;

  /// Which files take no writes from now on.
  enum class ReadOnly : std::uint8_t { kDatabase, kWholeMedium };
  void MakeReadOnly(ReadOnly files);
};

inline std::ostream& operator<<(std::ostream& stream, FaultyFileLayer::Fault fault) {
  return stream << (fault == FaultyFileLayer::Fault::kDiskFull ? "disk full" : "write error");
}

}  // namespace support

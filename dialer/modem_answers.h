#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace dialer {

/// What a modem says of a command (result codes of ITU-T V.250).
enum class ModemAnswer : std::uint8_t {
  kOk,
  kConnect,
  kBusy,
  kNoCarrier,
  kNoAnswer,
  kNoDialTone,
  kError,
};

/// Finds the answers among what a modem sends: its echo of the command, blank lines, news that
/// nobody asked for ("RING", "+CREG: 1"), and, at a wrong speed, anything at all. Answers may be
/// words or numbers (ATV0), and their lines may end with CR, LF or both.
class AnswerReader {
 public:
  /// Takes one byte. Returns the answer that ends with it, if one does.
  [[nodiscard]] std::optional<ModemAnswer> Take(std::byte byte);

  /// The modem has been quiet for a while, so the line counts as ended. Returns the answer that it
  /// is, if it is one.
  [[nodiscard]] std::optional<ModemAnswer> TakeUnendedLine();

  /// Returns whether anything was sent at all.
  [[nodiscard]] bool HasHeard() const { return m_hasHeard; }
  /// Returns whether the modem has repeated the command, so that both understand each other.
  [[nodiscard]] bool HasEcho() const { return m_hasEcho; }
  /// Returns whether something was sent that no modem sends.
  [[nodiscard]] bool HasNoise() const { return m_hasNoise; }

 private:
  [[nodiscard]] std::optional<ModemAnswer> EndLine();
  [[nodiscard]] std::optional<ModemAnswer> ReadLine(std::string_view line);

  std::string m_line;
  bool m_hasHeard = false;
  bool m_hasEcho = false;
  bool m_hasNoise = false;
};

}  // namespace dialer

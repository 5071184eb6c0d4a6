#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/clock.h"

namespace dial {

/// What a user presses.
struct Key {
  enum class Kind : std::uint8_t {
    kNone,    ///< Nothing, in all that time.
    kLetter,  ///< `letter` has it.
    kEscape,
    kOther,  ///< An arrow, a function key, or a letter that is not ASCII.
    kGone,   ///< The terminal has gone, and no key will ever come.
  };
  Kind kind = Kind::kNone;
  char letter = 0;
};

/// The terminal of standard input. As long as this exists, keys come one by one, without Enter, and
/// are not shown. At the end, and if a signal ends or stops the process, the terminal is as it was
/// before. There is one at a time.
class Terminal {
 public:
  /// Returns null if standard input is no terminal. `clock` outlives the result.
  [[nodiscard]] static std::unique_ptr<Terminal> Open(platform::Clock& clock);

  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal();

  /// Forgets what was pressed and not read. So no key answers a question that was not shown yet.
  void ForgetKeys();

  /// Waits for a key, for at most `milliseconds`. platform::kNoLimit waits without limit.
  [[nodiscard]] Key ReadKey(std::uint32_t milliseconds);

 private:
  explicit Terminal(platform::Clock& clock);
  [[nodiscard]] bool ReadBytes();
  [[nodiscard]] Key TakeKey();

  platform::Clock& m_clock;
  std::string m_bytes;  ///< Of keys that were pressed and not taken yet.
};

}  // namespace dial

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace vcard {

/// Cuts a stream of bytes into the content lines of vCards: joins lines that were folded (the next
/// one begins with a blank) and the soft line breaks of quoted-printable text. Takes CR LF, LF and
/// CR as ends of lines. Needs one line's limit of memory whatever the stream holds.
class LogicalLines {
 public:
  /// Longest line that is handed on whole. The longest that anyone writes by hand is a fraction of
  /// it; pictures are longer, and nobody here reads them.
  static constexpr std::size_t kMaxLength = 8192;

  struct Line {
    std::string_view text;     ///< Without its end; valid during the call.
    bool isTruncated = false;  ///< `text` is only the first kMaxLength bytes.
    std::size_t number = 0;    ///< Of the first line of the stream that it was written on, from 1.
  };
  using Sink = std::function<void(const Line&)>;
  /// Returns whether nobody reads what is after the first part of a line, which has a colon.
  using PassesOver = std::function<bool(std::string_view firstPart)>;

  /// Of a line that is passed over, the sink gets no more than the first part.
  LogicalLines(Sink sink, PassesOver passesOver)
      : m_sink(std::move(sink)), m_passesOver(std::move(passesOver)) {}

  /// The stream may be cut anywhere between two calls.
  void Feed(std::string_view bytes);

  /// Hands on what is left.
  void Finish();

 private:
  enum class State : std::uint8_t {
    kInLine,
    kAtEnd,        ///< The next byte decides whether the line goes on.
    kAtSoftBreak,  ///< The line goes on; a blank that folds it is dropped.
  };
  enum class Encoding : std::uint8_t { kUnknown, kQuotedPrintable, kOther };

  class LineEnds;

  /// Passes over what folds the line in progress. Returns the offset in `bytes` at which that ends,
  /// or at which the last line of the stream that they show begins.
  [[nodiscard]] std::size_t PassOver(std::string_view bytes, std::size_t at, LineEnds& ends);
  void BeginPhysicalLine(bool isFolded);
  void Append(std::string_view bytes);
  void EndPhysicalLine();
  void Emit();
  [[nodiscard]] bool IsQuotedPrintable();

  Sink m_sink;
  PassesOver m_passesOver;
  std::string m_line;
  std::size_t m_number = 1;       ///< Of the line of the stream that is being read.
  std::size_t m_firstNumber = 1;  ///< Of the one on which `m_line` began.
  State m_state = State::kInLine;
  Encoding m_encoding = Encoding::kUnknown;
  bool m_isTruncated = false;
  bool m_isPassedOver = false;
  bool m_hasContent = false;  ///< Some byte of the line in progress was seen.
  bool m_lastWasCarriageReturn = false;
  char m_lastOfLine = 0;
};

}  // namespace vcard

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "backends/vcard/charset.h"
#include "backends/vcard/content_line.h"
#include "backends/vcard/logical_lines.h"

namespace vcard {

/// Cuts a stream into vCards. It keeps of each card only the lines that a contact is made of, so a
/// picture costs no more than passing over it. It takes any bytes: what is no vCard is left out and
/// counts as damage.
class VcardSplitter {
 public:
  // Bounds of one card. They are far above what a real one needs, and keep a hostile one cheap to
  // parse.
  static constexpr std::size_t kMaxLines = 200;
  static constexpr std::size_t kMaxSeparators = 64;  ///< Commas and semicolons of one line.

  /// Called with each card in order, valid during the call.
  using CardSink = std::function<void(const Card& card)>;
  /// Called with the number of a line of the stream, from 1, and a sentence about what is damaged.
  using DamageSink = std::function<void(std::size_t line, std::string_view sentence)>;

  /// `sink` gets the whole cards. `torn` gets what was read of cards that have no end.
  explicit VcardSplitter(CardSink sink, CardSink torn = {}, DamageSink damage = {});

  /// The stream may be cut anywhere between two calls. UTF-16 is known by its mark or by the zeros
  /// next to its first character.
  void Feed(std::string_view bytes);

  /// Call this once, at the end of the stream.
  void Finish();

  /// Returns whether cards, or lines of cards, were left out. The stream may then have held a
  /// contact that was not handed on.
  [[nodiscard]] bool IsDamaged() const { return m_isDamaged; }

 private:
  void OnLine(const LogicalLines::Line& line);
  void OnLineOfCard(const LogicalLines::Line& line, const Property& property);
  void KeepLine(const LogicalLines::Line& line, const Property& property);
  void OnLineBetweenCards(const LogicalLines::Line& line);
  void BeginCard(std::size_t line);
  void EndCard();
  /// If a card is in progress, it has no end.
  void TearCard();
  void Damage(std::size_t line, std::u16string_view english);

  CardSink m_sink;
  CardSink m_torn;
  DamageSink m_damage;
  StreamDecoder m_decoder;
  LogicalLines m_lines;
  std::vector<ContentLine> m_card;  ///< Those after the first m_keptLines are of earlier cards.
  std::size_t m_keptLines = 0;
  std::size_t m_firstLine = 0;    ///< Of the card.
  std::size_t m_linesOfCard = 0;  ///< That could count, also those that need not be read.
  bool m_hasName = false;         ///< The card has a line with the parts of the name,
  bool m_isNamed = false;         ///< and these are a name.
  std::size_t m_nesting = 0;  ///< Cards within the card, as the agents of vCard 2.1 are written.
  bool m_isInCard = false;
  bool m_isAgentDue = false;  ///< The line before announced a card within the card.
  bool m_isStray = false;     ///< The line before was no part of a card either.
  bool m_isDamaged = false;
};

}  // namespace vcard

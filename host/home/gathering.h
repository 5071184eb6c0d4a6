#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/session/session.h"

namespace home {

/// Gathers what a session has to say while it does something for the window. Agrees to everything,
/// since the window has asked already or offers an Undo.
class Gathering final : public session::Outlet {
 public:
  /// Returns the sentences so far, with a space between them. Returns an empty text if there are
  /// none.
  [[nodiscard]] std::u16string GetText() const;
  void Clear() { m_sentences.clear(); }

  void ShowFailure(std::string_view sentence) override;
  void ShowWarning(std::string_view /*sentence*/) override {}
  void ShowMessage(const headless::ShownMessage& message) override;
  [[nodiscard]] bool AgreesTo(const platform::MessageBox& /*question*/) override { return true; }
  void WatchReinit(headless::HeadlessDialog& window) override;
  [[nodiscard]] std::string Advise(session::Matter matter) const override;

 private:
  /// Adds the sentence if it is not among them.
  void Add(std::u16string sentence);

  std::vector<std::u16string> m_sentences;
};

/// Returns a part of a sentence, as sessions report it, as a whole sentence.
[[nodiscard]] std::u16string ToSentence(std::string_view part);

/// Returns a name without what would turn the order of other words on the screen, or break the
/// line: marks of direction and control characters, which are nobody's letters.
[[nodiscard]] std::u16string ToShown(std::u16string name);

}  // namespace home

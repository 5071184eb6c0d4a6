#include "host/home/gathering.h"

#include <algorithm>
#include <utility>

#include "backends/qt/strings.h"
#include "backends/text/printable.h"
#include "backends/text/utf.h"
#include "resources/work_strings.h"

namespace home {

std::u16string ToSentence(std::string_view part) {
  QString text = QString::fromUtf8(part.data(), static_cast<qsizetype>(part.size()));
  if (!text.isEmpty()) {
    text[0] = text.at(0).toUpper();
  }
  return qt::ToText(qt::Say(resources::kWholeSentence).arg(text));
}

std::u16string ToShown(std::u16string name) {
  return std::ranges::any_of(name, text::IsCommand)
             ? text::FromUtf8(text::Printable(text::ToUtf8(name)))
             : std::move(name);
}

std::u16string Gathering::GetText() const {
  std::u16string text;
  for (const std::u16string& sentence : m_sentences) {
    text.append(text.empty() ? u"" : u" ").append(sentence);
  }
  return text;
}

void Gathering::Add(std::u16string sentence) {
  if (std::ranges::find(m_sentences, sentence) == m_sentences.end()) {
    m_sentences.push_back(std::move(sentence));
  }
}

void Gathering::ShowFailure(std::string_view sentence) { Add(ToSentence(sentence)); }

void Gathering::ShowMessage(const headless::ShownMessage& message) { Add(message.box.text); }

void Gathering::WatchReinit(headless::HeadlessDialog& window) {
  // Only after a failure can it be closed. Each try before that does nothing.
  constexpr std::uint32_t kStep = 100;
  while (!window.WaitForEnd(kStep)) {
    window.Close();
  }
}

std::string Gathering::Advise(session::Matter matter) const {
  using session::Matter;
  switch (matter) {
    case Matter::kNoDesktopBooks:
    case Matter::kUnreadableAddressBook:
      return qt::Say(resources::kChooseAnotherBook).toStdString();
    case Matter::kNoContacts:
      return qt::Say(resources::kChooseContacts).toStdString();
    case Matter::kNoRoot:
      break;
  }
  return {};
}

}  // namespace home

#include "host/home/language_section.h"

#include <QComboBox>
#include <QLabel>
#include <QLocale>
#include <QSignalBlocker>

#include "host/home/say.h"
#include "host/home/sizes.h"
#include "resources/setup_strings.h"
#include "storage/device_paths.h"
#include "storage/folders.h"

namespace home {
namespace {

using language::LanguageError;
using language::OwnFile;

language::LanguageChoice MakeChoice(machine::Backends& backends, const SetupTools& tools) {
  return {backends.GetFiles(), machine::Backends::ToSystemPath(tools.languages.native()),
          std::u16string(storage::kLanguageFile)};
}

/// Returns the name of a language in that language, such as "Deutsch". An empty text means English.
/// The library names a country too ("español de España") where a language has several. The shortest
/// name is the one without.
QString LanguageName(const std::string& language) {
  const QString tag = language.empty() ? QStringLiteral("en") : QString::fromStdString(language);
  const QLocale locale(tag);
  QString name = locale.nativeLanguageName();
  for (const QLocale& other :
       QLocale::matchingLocales(locale.language(), locale.script(), QLocale::AnyTerritory)) {
    const QString otherName = other.nativeLanguageName();
    if (!otherName.isEmpty() && otherName.size() < name.size()) {
      name = otherName;
    }
  }
  return name.isEmpty() ? tag : locale.toUpper(name.left(1)) + name.mid(1);
}

QString Explain(LanguageError error) {
  switch (error) {
    case LanguageError::kInUse:
      return Say(resources::kLanguageInUse);
    case LanguageError::kUnreadable:
      return Say(resources::kLanguageUnreadable);
    default:
      return Say(resources::kLanguageNotWritten);
  }
}

}  // namespace

LanguageSection::LanguageSection(const SetupTools& tools, Errands& errands, QWidget* parent)
    : SetupSection(resources::kLanguage, parent),
      m_tools(tools),
      m_errands(errands),
      m_label(AddText(Say(resources::kSheetLanguage))),
      m_languages(new ChoiceBox(this)) {
  m_label->setTextInteractionFlags(Qt::NoTextInteraction);
  m_label->setBuddy(m_languages);
  m_languages->setObjectName(QStringLiteral("languages"));
  m_languages->setMinimumHeight(kLeastTarget);
  m_languages->setAccessibleName(Say(resources::kSheetLanguage).remove(u'&'));
  AddControl(m_languages);
  m_news = AddNews();
  m_news->setObjectName(QStringLiteral("languageNews"));
  AddText(Say(resources::kLanguageRule));
  connect(m_languages, &QComboBox::activated, this, [this](int index) {
    const QVariant language = m_languages->itemData(index);
    if (language.isValid()) {
      Choose(language.toString().toStdString(), OwnFile::kStays);
    }
  });
}

void LanguageSection::OnShown() {
  m_errands.Do(
      [&tools = m_tools] {
        machine::Backends backends(tools.options);
        const auto choice = MakeChoice(backends, tools);
        return Found{choice.List(), choice.GetCurrent()};
      },
      [this](const Found& found) { Show(found); });
}

void LanguageSection::Show(const Found& found) {
  // What is filled in is not the user's choice.
  const QSignalBlocker blocker(m_languages);
  m_languages->clear();
  m_languages->addItem(LanguageName({}), QString());
  for (const std::string& language : found.languages) {
    m_languages->addItem(LanguageName(language), QString::fromStdString(language));
  }
  if (!found.current) {
    m_languages->addItem(Say(resources::kOwnLanguageFile));
    m_languages->setCurrentIndex(m_languages->count() - 1);
  } else {
    m_languages->setCurrentIndex(m_languages->findData(QString::fromStdString(*found.current)));
  }
  if (found.languages.empty()) {
    ShowNews(*m_news, Say(resources::kNoLanguages));
  }
}

void LanguageSection::Choose(const std::string& language, OwnFile ownFile) {
  SetBusy({m_languages}, true);
  m_errands.Do(
      [&tools = m_tools, language, ownFile] {
        machine::Backends backends(tools.options);
        backends.MakeRoot();
        // If one is missing all the same, the file cannot be written.
        static_cast<void>(storage::CreateStoreFolders(backends.GetFiles()));
        Chosen chosen{MakeChoice(backends, tools).Choose(language, ownFile), {}};
        if (chosen.kept && !chosen.kept->empty()) {
          chosen.keptAt = backends.ToHostPath(*chosen.kept);
        }
        return chosen;
      },
      [this, language](const Chosen& chosen) { ShowChoice(language, chosen); });
}

void LanguageSection::ShowChoice(const std::string& language, const Chosen& chosen) {
  SetBusy({m_languages}, false);
  if (chosen.kept) {
    QString news = Say(resources::kLanguageChosen).arg(LanguageName(language));
    if (!chosen.keptAt.empty()) {
      news += u' ' + Say(resources::kOwnLanguageKept).arg(QString::fromStdString(chosen.keptAt));
    }
    ShowNews(*m_news, news);
  } else if (chosen.kept.error() != LanguageError::kOwnFile) {
    ShowNews(*m_news, Explain(chosen.kept.error()));
  } else if (m_tools.questions.agrees(this, Say(resources::kReplaceOwnLanguage),
                                      Say(resources::kReplace), Say(resources::kKeepMine))) {
    Choose(language, OwnFile::kMayGo);
    return;
  }
  OnShown();
}

}  // namespace home

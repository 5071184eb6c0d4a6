#include "host/home/address_book_section.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <algorithm>

#include "backends/vcard/contact_source.h"
#include "host/home/say.h"
#include "resources/setup_strings.h"

namespace home {
namespace {

using Problem = vcard::AddressBooks::Problem;

constexpr const char* kDesktop = "eds";

QString FromHost(const std::string& text) { return QString::fromStdString(text); }

/// Returns the file as the user knows it, with the separators of this machine.
QString NameOf(const std::string& path) {
  return QDir::toNativeSeparators(QFile::decodeName(QByteArray::fromStdString(path)));
}

QString DescribeSource(const AddressBook& book) {
  if (book.chosen.empty()) {
    return Say(resources::kContactsOfDefault).arg(NameOf(book.defaultFile));
  }
  return book.chosen == kDesktop ? Say(resources::kContactsOfDesktop)
                                 : Say(resources::kContactsOfFile).arg(NameOf(book.chosen));
}

QString DescribeProblem(const AddressBook& book) {
  QString text;
  switch (book.problem.value_or(Problem::kStore)) {
    case Problem::kStore:
      text = Say(resources::kContactsFailed);
      break;
    case Problem::kNoServer:
      text = Say(resources::kNoBooksAnswer);
      break;
    case Problem::kUnreadable:
      text = Say(resources::kBookUnreadable);
      break;
    case Problem::kNothingChosen:
      text = Say(resources::kNoBookChosen);
      break;
    case Problem::kTagsElsewhere:
      text = Say(resources::kBookOfOthers);
      break;
  }
  return book.reason.empty() ? text
                             : text + u' ' + Say(resources::kSystemSays).arg(FromHost(book.reason));
}

QString DescribePeople(const AddressBook& book) {
  if (!book.isRead || book.problem) {
    return DescribeProblem(book);
  }
  if (book.people < 2) {
    return Say(book.people == 0 ? resources::kNoPerson : resources::kOnePerson);
  }
  return Say(resources::kManyPeople).arg(book.people);
}

/// A file of another kind can have a fault in each line, which nobody wants to read.
constexpr std::size_t kFirstPlaces = 3;

QString DescribePlaces(const std::vector<std::string>& places, std::size_t shown) {
  QString text;
  if (places.size() > vcard::RemarkList::kMaxRemarks) {
    text = Say(resources::kVeryManyRemarks).arg(vcard::RemarkList::kMaxRemarks);
  } else {
    text = places.size() == 1 ? Say(resources::kOneRemark)
                              : Say(resources::kManyRemarks).arg(places.size());
  }
  for (std::size_t i = 0; i < std::min(shown, places.size()); ++i) {
    text += u'\n' + FromHost(places[i]);
  }
  return text;
}

}  // namespace

AddressBookSection::AddressBookSection(const SetupTools& tools, Errands& errands, QWidget* parent)
    : SetupSection(resources::kAddressBook, parent),
      m_tools(tools),
      m_errands(errands),
      m_source(AddText({})),
      m_people(AddText({})),
      m_remarks(AddText({})),
      m_news(AddNews()) {
  m_source->setObjectName(QStringLiteral("bookSource"));
  m_people->setObjectName(QStringLiteral("bookPeople"));
  m_remarks->setObjectName(QStringLiteral("bookRemarks"));
  m_remarks->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  m_news->setObjectName(QStringLiteral("bookNews"));
  m_desktop = AddButton(resources::kUseDesktopBook, "useDesktopBook", [this] { Choose(kDesktop); });
  m_file = AddButton(resources::kChooseBookFile, "chooseBookFile", [this] {
    const QString path = m_tools.questions.openFile(this, Say(resources::kChooseBookTitle),
                                                    Say(resources::kBookFilter));
    if (!path.isEmpty()) {
      Choose(QFile::encodeName(path).toStdString());
    }
  });
  m_allPlaces = AddButton(resources::kShowAllPlaces, "showAllPlaces", [this] {
    m_areAllPlacesShown = !m_areAllPlacesShown;
    ShowRemarks();
  });
  ShowButtons({m_desktop, m_file});
  // A window that was started with --contacts cannot choose: the next start with the same command
  // would choose the old book again.
  const bool isGiven = !m_tools.options.contacts.empty();
  m_desktop->setEnabled(!isGiven);
  m_file->setEnabled(!isGiven);
  AddText(isGiven ? Say(resources::kBookIsGiven)
                  : Say(resources::kBookRule) + u' ' + Say(resources::kDropBook));
}

void AddressBookSection::OnShown() {
  // The user may leave the page and come back while the contacts are still being read.
  if (m_isBusy) {
    return;
  }
  SetBusy(true);
  if (m_people->text().isEmpty()) {
    ShowText(*m_source, Say(resources::kReadingContacts));
  }
  m_errands.Do([&options = m_tools.options] { return ReadAddressBook(options); },
               [this](const AddressBook& book) {
                 SetBusy(false);
                 Show(book);
               });
}

void AddressBookSection::OnFilesDropped(const QStringList& paths) {
  if (!m_tools.options.contacts.empty()) {
    ShowNews(*m_news, Say(resources::kBookIsGiven));
  } else if (paths.size() != 1) {
    ShowNews(*m_news, Say(resources::kOneFileOnly));
  } else {
    Choose(QFile::encodeName(paths.front()).toStdString());
  }
}

void AddressBookSection::Choose(const std::string& contacts) {
  SetBusy(true);
  ShowNews(*m_news, Say(resources::kReadingContacts));
  m_errands.Do(
      [&options = m_tools.options, contacts] { return ChooseAddressBook(options, contacts); },
      [this](const BookChoice& choice) {
        SetBusy(false);
        ShowChoice(choice);
      });
}

void AddressBookSection::Show(const AddressBook& book) {
  ShowText(*m_source, DescribeSource(book));
  ShowText(*m_people, DescribePeople(book));
  m_areAllPlacesShown = m_areAllPlacesShown && m_places == book.remarks;
  m_places = book.remarks;
  ShowRemarks();
}

void AddressBookSection::ShowRemarks() {
  // A button for a single line would take as much room as the line.
  const bool areMany = m_places.size() > kFirstPlaces + 1;
  const std::size_t shown = areMany && !m_areAllPlacesShown ? kFirstPlaces : m_places.size();
  ShowText(*m_remarks, m_places.empty() ? QString() : DescribePlaces(m_places, shown));
  if (!areMany) {
    ShowButtons({m_desktop, m_file});
    return;
  }
  ChangeText(*m_allPlaces, m_areAllPlacesShown
                               ? Say(resources::kShowFewPlaces)
                               : Say(resources::kShowAllPlaces).arg(m_places.size() - shown));
  ShowButtons({m_desktop, m_file, m_allPlaces});
}

void AddressBookSection::ShowChoice(const BookChoice& choice) {
  if (choice.isTaken) {
    Show(choice.book);
    ShowNews(*m_news, Say(resources::kBookChosen));
    m_tools.work.Load();
    return;
  }
  const QString refused = choice.book.chosen == kDesktop
                              ? Say(resources::kDesktopNotTaken)
                              : Say(resources::kBookNotTaken).arg(NameOf(choice.book.chosen));
  const QString reason =
      choice.message.empty() ? DescribeProblem(choice.book) : qt::ToQString(choice.message);
  ShowNews(*m_news, refused + u' ' + reason);
}

void AddressBookSection::SetBusy(bool isBusy) {
  m_isBusy = isBusy;
  if (m_tools.options.contacts.empty()) {
    SetupSection::SetBusy({m_desktop, m_file}, isBusy);
  }
}

}  // namespace home

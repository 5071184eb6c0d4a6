// The Learning page opens, with contacts, tag list and buttons; the user chooses a contact.

#include "framework/dialog.h"
#include "language/texts.h"
#include "resources/dialogs.h"
#include "resources/strings.h"
#include "storage/folders.h"
#include "tags/contact_reading.h"
#include "tags/page_one.h"

namespace tags {
Page_one::Page_one(const platform::Platform& platform, const language::Texts& texts)
    : CPropertyPage(resources::kLearningDialog, platform.ui),
      m_platform(platform),
      m_texts(texts),
      m_store(platform.files, platform.registry),
      m_trash(platform.files, platform.registry, platform.clock),
      m_picker(platform.contacts, [this](const ContactMessage& message) { Report(message); }),
      m_mathematics(platform.files, platform.ui),
      m_reinitDialog(platform, texts),
      m_testDialog(platform, texts) {
  storage::CreateInstallFolders(m_platform.files);
}

Page_one::~Page_one() {
  // Also if the log-on failed, as the contacts ask for.
  m_platform.contacts.Logoff();
  // The tags are free for another page before anything is waited for.
  m_onlyInstance.reset();
  EndLateWorkers();
}

const framework::RuntimeClass& Page_one::GetRuntimeClass() const {
  static constexpr framework::RuntimeClass kClass{"Page_one"};
  return kClass;
}

void Page_one::Serialize(framework::CArchive& archive) { m_mathematics.Serialize(archive); }

bool Page_one::OnInitDialog() {
  CPropertyPage::OnInitDialog();
  // The sheet can open again with the same page, so each opening starts from nothing.
  m_isSetUp = false;
  if (!BecomeOnlyInstance()) {
    m_platform.process.End(0);
    return true;
  }
  // The tags are this page's alone now, so nobody else is in the middle of a deletion.
  m_trash.Recover();
  if (!Fill()) {
    return true;  // Nothing happens after the message: the page stays as it was drawn.
  }
  m_testDialog.set_Pageone_point(this);
  m_reinitDialog.set_Pageone_point(this);
  m_isSetUp = true;
  GetWindow().PostCommand(resources::kCheckVersionCommand);
  return true;
}

bool Page_one::Fill() {
  // It goes before the command is posted, whose handler may show a dialog.
  const framework::WaitCursor wait(m_platform.ui);
  m_workerEvent = m_platform.threads.CreateManualResetEvent().value_or(nullptr);
  OpenAudio();
  if (!OpenContacts()) {
    return false;
  }
  // The tags come after the contacts, since each line asks for its contact, and the buttons after
  // both, since they depend on the counts.
  LoadTagList();
  EnableButtons();
  ShowCount();
  TranslateControls();
  return true;
}

bool Page_one::BecomeOnlyInstance() {
  if (m_onlyInstance) {
    return true;  // The same library shows the sheet once more.
  }
  auto created = m_platform.threads.CreateNamedMutex(kInstanceMutex);
  if (!created) {
    // Without a mutex the page opens all the same: nothing shows that another one is open.
    return created.error() != platform::ThreadError::kHeld;
  }
  m_onlyInstance = std::move(*created);
  return true;
}

bool Page_one::OpenContacts() {
  const auto opened = tags::OpenContacts(m_platform.contacts, m_platform.clock).and_then([this] {
    return m_picker.Load(GetWindow());
  });
  if (!opened) {
    Report(opened.error());
  }
  return opened.has_value();
}

void Page_one::Report(const ContactMessage& message) {
  m_platform.ui.ShowMessage(ToBox(message, m_texts));
}

void Page_one::OnSelchangeComboName() {
  if (const auto selection = GetWindow().GetSelection(resources::kContactComboId)) {
    m_picker.ListNumbers(GetWindow(), *selection);
  }
}

void Page_one::OnSelchangeComboNumber() {
  if (const auto selection = GetWindow().GetSelection(resources::kNumberComboId)) {
    m_picker.ChooseNumber(GetWindow().GetItemText(resources::kNumberComboId, *selection));
  }
}

void Page_one::EnableButtons() {
  platform::DialogWindow& window = GetWindow();
  window.Enable(resources::kPlayButtonId, false);
  window.Enable(resources::kDeleteButtonId, false);
  if (m_picker.GetContacts().GetCount() == 0) {
    window.Enable(resources::kRecordButtonId, false);
  }
  if (m_tags.tagCount < 2) {
    window.Enable(resources::kTestButtonId, false);
  }
  if (window.GetItemCount(resources::kTagListId) == 0) {
    window.Enable(resources::kDeleteAllButtonId, false);
  }
}

void Page_one::TranslateControls() {
  if (!m_texts.IsLanguageFileLoaded()) {
    return;
  }
  const struct {
    int id;
    const resources::Text& text;
  } controls[] = {{resources::kContactsLabelId, resources::kContactsLabel},
                  {resources::kRecordButtonId, resources::kRecordButton},
                  {resources::kPlayButtonId, resources::kPlayButton},
                  {resources::kDeleteButtonId, resources::kDeleteButton},
                  {resources::kDeleteAllButtonId, resources::kDeleteAllButton},
                  {resources::kTestButtonId, resources::kTestButton}};
  for (const auto& control : controls) {
    GetWindow().SetText(control.id, m_texts(control.text));
  }
}

void Page_one::ShowCount() {
  GetWindow().SetText(resources::kCountLabelId, language::CountLabel(m_texts, m_tags.tagCount));
}

void Page_one::OnCommand(int id, platform::CommandEvent event) {
  // The two combo boxes and the list report selections. All else is a press of a button, or the
  // command that the page posted to itself.
  if (event == platform::CommandEvent::kSelectionChange) {
    switch (id) {
      case resources::kContactComboId:
        OnSelchangeComboName();
        break;
      case resources::kNumberComboId:
        OnSelchangeComboNumber();
        break;
      case resources::kTagListId:
        GetWindow().Enable(resources::kPlayButtonId, true);
        GetWindow().Enable(resources::kDeleteButtonId, true);
        break;
      default:
        break;
    }
    return;
  }
  switch (id) {
    case resources::kRecordButtonId:
      OnRecord();
      break;
    case resources::kPlayButtonId:
      OnPlay();
      break;
    case resources::kDeleteButtonId:
      OnDelete();
      break;
    case resources::kDeleteAllButtonId:
      OnDeleteAll();
      break;
    case resources::kTestButtonId:
      OnTest();
      break;
    case resources::kCheckVersionCommand:
      OnCheckVersion();
      break;
    default:
      break;
  }
}

}  // namespace tags

#include <gmock/gmock.h>

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QTest>
#include <QTextEdit>

#include "applet/about_page.h"
#include "resources/dialogs.h"
#include "resources/pictures.h"
#include "tests/backends/qt/dialog_fixture.h"

namespace {

using namespace resources;
using support::User;

/// What a screen reader calls a control: by the label that is tied to it, or by its own name.
QString NameOf(QWidget* widget) {
  const QAccessibleInterface* read = QAccessible::queryAccessibleInterface(widget);
  const auto labels = read->relations(QAccessible::Label);
  return labels.isEmpty() ? read->text(QAccessible::Name)
                          : labels[0].first->text(QAccessible::Name);
}

class Accessibility : public testing::Test {
 protected:
  void Run(const std::function<void()>& story) {
    m_user.Soon([&story] {
      story();
      User::GetWindow()->reject();
    });
    m_machine.RunSheet();
  }
  static QString NameOf(int id) { return ::NameOf(User::Find(id)); }
  static QAccessible::Role RoleOf(int id) {
    return QAccessible::queryAccessibleInterface(User::Find(id))->role();
  }

  support::PageMachine m_machine;
  User m_user;
};

TEST_F(Accessibility, EveryControlHasANameAndARole) {
  Run([] {
    EXPECT_EQ(NameOf(kContactComboId), "Contacts");
    EXPECT_EQ(NameOf(kNumberComboId), "Lee Ann") << "Whose numbers they are.";
    EXPECT_EQ(NameOf(kTagListId), "Learned commands: 0");
    EXPECT_EQ(NameOf(kRecordButtonId), "Record");
    EXPECT_EQ(NameOf(kDeleteAllButtonId), "Delete All");
    EXPECT_EQ(RoleOf(kContactComboId), QAccessible::ComboBox);
    EXPECT_EQ(RoleOf(kNumberComboId), QAccessible::ComboBox);
    EXPECT_EQ(RoleOf(kTagListId), QAccessible::List);
    EXPECT_EQ(RoleOf(kRecordButtonId), QAccessible::Button);
    EXPECT_EQ(RoleOf(kCountLabelId), QAccessible::StaticText);
  });
}

TEST_F(Accessibility, TheLabelIsTiedToItsBox) {
  Run([] {
    const auto relations = QAccessible::queryAccessibleInterface(User::Find(kContactComboId))
                               ->relations(QAccessible::Label);
    ASSERT_EQ(relations.size(), 1);
    EXPECT_EQ(relations[0].first->object(), User::Find(kContactsLabelId));
  });
}

TEST_F(Accessibility, NamesFollowWhatThePageShows) {
  Run([] {
    User::Choose(kContactComboId, 1);
    EXPECT_EQ(NameOf(kNumberComboId), "Ray & Sons <b> Bob");
    User::Click(kRecordButtonId);
    EXPECT_EQ(NameOf(kTagListId), "Learned commands: 1");
  });
}

TEST_F(Accessibility, TheBarIsNamedForWhatIsBeingDone) {
  class Watcher final : public QObject {
   public:
    bool eventFilter(QObject* watched, QEvent* event) override {
      if (event->type() == QEvent::Show && watched->objectName() == QStringLiteral("1212")) {
        auto* bar = dynamic_cast<QWidget*>(watched);
        name = ::NameOf(bar);
        role = QAccessible::queryAccessibleInterface(bar)->role();
      }
      return false;
    }
    QString name;
    QAccessible::Role role = QAccessible::NoRole;
  } watcher;
  qApp->installEventFilter(&watcher);
  Run([] { User::Click(kRecordButtonId); });
  EXPECT_EQ(watcher.name, "Record");
  EXPECT_EQ(watcher.role, QAccessible::ProgressBar);
}

TEST_F(Accessibility, AMessageBoxIsReadOut) {
  QString name;
  QString description;
  m_user.SetAnswer([&](QDialog& box) {
    auto* read = QAccessible::queryAccessibleInterface(&box);
    name = read->text(QAccessible::Name);
    description = read->text(QAccessible::Description);
    box.reject();
  });
  m_machine.ui.ShowMessage(platform::ApplicationBox(u"Error: oid == 0"));
  EXPECT_EQ(name, "Zedra Voxtrel");
  EXPECT_EQ(description, "Error: oid == 0");
}

TEST_F(Accessibility, TheTextOfAMessageBoxHasTheNameOfTheBox) {
  QString name;
  m_user.SetAnswer([&](QDialog& box) {
    name = QAccessible::queryAccessibleInterface(box.findChild<QTextEdit*>("text"))
               ->text(QAccessible::Name);
    box.reject();
  });
  m_machine.ui.ShowMessage(platform::ApplicationBox(u"Error: oid == 0"));
  EXPECT_EQ(name, "Zedra Voxtrel");
}

/// A sheet with the real About page as its second page.
class AboutAccessibility : public testing::Test {
 protected:
  void Run(const std::function<void()>& story, bool isSiteReachable = true) {
    applet::AboutPage page(m_machine.GetPlatform(),
                           {resources::kProductPicture, resources::kMakerPicture, u"Voxtrel PE",
                            u"v3.0", isSiteReachable});
    framework::CPropertySheet sheet(u"Property", m_machine.ui);
    sheet.AddPage(page);
    m_user.Soon([&story] {
      QApplication::processEvents();
      story();
      if (QDialog* window = User::GetWindow()) {
        window->reject();
      }
    });
    sheet.DoModal();
  }
  static QWidget* GetLink() { return User::GetWindow()->findChild<QWidget*>("link"); }
  static QWidget* GetSurface() { return User::GetWindow()->findChild<QWidget*>("dialog_135"); }

  support::PageMachine m_machine;
  User m_user;
};

TEST_F(AboutAccessibility, ASiteThatNobodyCanReachIsNoLink) {
  Run([] { EXPECT_EQ(GetLink(), nullptr); }, false);
}

TEST_F(AboutAccessibility, WhatIsPaintedCanBeRead) {
  Run([] {
    const auto* page = QAccessible::queryAccessibleInterface(GetSurface());
    EXPECT_EQ(page->text(QAccessible::Name), "About");
    EXPECT_EQ(page->text(QAccessible::Description), "Voxtrel PE v3.0\nZedra Tech.");
    const auto* link = QAccessible::queryAccessibleInterface(GetLink());
    EXPECT_EQ(link->text(QAccessible::Name), "https://voxtrel.example/");
    EXPECT_EQ(link->role(), QAccessible::Button);
    EXPECT_EQ(page->indexOfChild(link), 0);
  });
}

TEST_F(AboutAccessibility, TheWebSiteIsReachedByTabAndOpenedByTheKeyboard) {
  const auto& opened = m_machine.machine.shell.GetRequests();
  Run([&] {
    User::GetWindow()->activateWindow();
    QApplication::processEvents();
    ASSERT_TRUE(User::TabTo(User::GetWindow()->findChild<QWidget*>("ok")));
    const QImage without = GetSurface()->grab().toImage();
    ASSERT_TRUE(User::TabTo(GetLink()));
    EXPECT_NE(GetSurface()->grab().toImage(), without) << "The focus can be seen.";
    User::Type(Qt::Key_Space);
    EXPECT_EQ(opened.size(), 1U);
    User::Type(Qt::Key_Return);
    EXPECT_EQ(opened.size(), 2U);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, true);
    QApplication::sendEvent(GetLink(), &held);
    EXPECT_EQ(opened.size(), 2U) << "A key that is held down is one press.";
    ASSERT_NE(User::GetWindow(), nullptr) << "Enter did not press OK.";
  });
  for (const headless::ShellRequest& request : opened) {
    EXPECT_EQ(request.parameters, u"https://voxtrel.example/");
  }
}

TEST_F(AboutAccessibility, TheMousePressesThePageAsBefore) {
  const auto& opened = m_machine.machine.shell.GetRequests();
  Run([&] {
    const QPoint middle = GetLink()->geometry().center();
    EXPECT_EQ(GetSurface()->childAt(middle), nullptr);
    QTest::mouseClick(GetSurface(), Qt::LeftButton, Qt::NoModifier, middle);
    EXPECT_EQ(opened.size(), 1U);
    QTest::mouseClick(GetSurface(), Qt::LeftButton, Qt::NoModifier,
                      GetLink()->geometry().topLeft());
    EXPECT_EQ(opened.size(), 1U) << "The frame is no part of the link.";
  });
}

using DialogAccessibility = DialogFixture;

TEST_F(DialogAccessibility, ThePictureOfTheTestDialogIsCalledHelp) {
  NotingDialog dialog(m_ui, resources::kTestResultsDialog);
  Run(dialog, [] { EXPECT_EQ(NameOf(User::Find(kTestHelpId)), "Help"); });
}

TEST_F(DialogAccessibility, WhatNothingNamesIsNamedForTheDialog) {
  NotingDialog dialog(m_ui);
  Run(dialog, [] {
    const auto nameOf = [](int id) { return NameOf(User::Find(id)); };
    EXPECT_EQ(nameOf(sample::kCombo), "Fish & chips");
    EXPECT_EQ(nameOf(sample::kList), "Seventy & seven");
    EXPECT_EQ(nameOf(sample::kPicture), "Seventy & seven");
    EXPECT_EQ(nameOf(sample::kCheck), "Check & mate");
    EXPECT_EQ(nameOf(sample::kGo), "Go & see");
  });
}

}  // namespace

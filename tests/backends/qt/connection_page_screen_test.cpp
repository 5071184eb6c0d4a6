#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>
#include <functional>

#include "backends/qt/application.h"
#include "backends/qt/qt_ui.h"
#include "backends/qt/strings.h"
#include "connection/connection_page.h"
#include "resources/connection_strings.h"
#include "resources/dialogs.h"
#include "storage/registry_keys.h"
#include "tests/backends/qt/page_machine.h"
#include "tests/backends/qt/user.h"
#include "tests/machine/memory_registry.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using namespace resources;
using support::User;

/// The connection settings on real widgets.
class ConnectionPageScreen : public testing::Test {
 protected:
  /// Opens the sheet, runs `story` on it, and closes it if the story did not.
  bool Run(const std::function<void()>& story) {
    m_user.Soon([&story] {
      story();
      if (QDialog* window = User::GetWindow()) {
        window->reject();
      }
    });
    return connection::RunConnectionSheet(m_ui, m_registry, u"Property");
  }

  void PutPort(std::u16string_view name) {
    const std::u16string path = std::u16string(u"Drivers\\Active\\").append(name);
    ASSERT_EQ(support::ErrorOf(support::PutText(m_registry, path, u"Name", name)), std::nullopt);
  }

  [[nodiscard]] std::vector<std::byte> Stored(std::u16string_view name) {
    return support::BytesOf(m_registry, storage::kDialerKey, name);
  }
  [[nodiscard]] static std::vector<std::byte> Bytes(std::u16string_view text, std::size_t count) {
    auto bytes = support::Utf16Bytes(text);
    bytes.resize(count);
    return bytes;
  }
  [[nodiscard]] static bool IsChecked(int id) {
    return dynamic_cast<QCheckBox*>(User::Find(id))->isChecked();
  }

  machine::MemoryRegistry m_registry;
  qt::UiThread m_thread;
  qt::QtUi m_ui{m_thread, u"Zedra Voxtrel", support::TestPictures()};
  User m_user;
};

TEST_F(ConnectionPageScreen, StoresWhatIsChosenAndTyped) {
  PutPort(u"COM1:");
  PutPort(u"COM10:");
  EXPECT_TRUE(Run([] {
    EXPECT_EQ(User::FindCombo(kPortComboId)->currentText(), "COM2:") << "No list holds it.";
    EXPECT_EQ(User::FindCombo(kPortComboId)->itemText(0), "COM10:");
    EXPECT_EQ(User::FindCombo(kBaudRateComboId)->currentText(), "9600");
    User::Choose(kPortComboId, 1);
    QComboBox* rate = User::FindCombo(kBaudRateComboId);
    rate->setFocus();
    rate->lineEdit()->selectAll();
    QTest::keyClicks(rate, "921600");
    User::Choose(kStopBitsComboId, 2);
    User::Click(kNoHangUpCheckId);
    User::PressOk();
  }));
  EXPECT_EQ(Stored(u"Com_port"), Bytes(u"COM1:", 200));
  EXPECT_EQ(Stored(u"Bound_rate"), Bytes(u"921600", 32));
  EXPECT_EQ(Stored(u"Stop_bit"), Bytes(u"2", 32));
  EXPECT_EQ(Stored(u"is_BT"), Bytes(u"0", 4));
  EXPECT_EQ(Stored(u"is_HU"), Bytes(u"1", 4));
}

TEST_F(ConnectionPageScreen, DefaultSetsTheLineBack) {
  PutPort(u"COM1:");
  Run([] {
    User::Choose(kPortComboId, 0);
    User::Choose(kBaudRateComboId, 0);
    User::Choose(kFlowControlComboId, 0);
    User::Click(kHeadsetCheckId);
    User::Click(kNoHangUpCheckId);
    User::Click(kDefaultsButtonId);
    EXPECT_EQ(User::FindCombo(kBaudRateComboId)->currentText(), "9600");
    EXPECT_EQ(User::FindCombo(kFlowControlComboId)->currentText(), "none");
    EXPECT_FALSE(IsChecked(kHeadsetCheckId));
    EXPECT_TRUE(IsChecked(kNoHangUpCheckId));
    EXPECT_EQ(User::FindCombo(kPortComboId)->currentText(), "COM1:");
  });
  EXPECT_TRUE(Stored(u"Bound_rate").empty()) << "The sheet was closed without OK.";
}

TEST_F(ConnectionPageScreen, ShowsAllOfItsControlsAndNotItsOwnOk) {
  Run([] {
    EXPECT_EQ(User::GetWindow()->windowTitle(), "Property");
    const auto* tabs = User::GetWindow()->findChild<QTabWidget*>();
    EXPECT_EQ(tabs->count(), 1);
    EXPECT_EQ(tabs->tabText(0), "Skins");
    for (const int id : {kPortComboId, kBaudRateComboId, kDataBitsComboId, kStopBitsComboId,
                         kFlowControlComboId, kHeadsetCheckId, kNoHangUpCheckId}) {
      const QWidget* control = User::Find(id);
      EXPECT_TRUE(control->isVisible()) << id;
      EXPECT_FALSE(control->accessibleName().isEmpty() &&
                   dynamic_cast<const QCheckBox*>(control) == nullptr)
          << id;
    }
    const QWidget* own = User::Find(kSaveButtonId);
    EXPECT_TRUE(own == nullptr || !own->isVisible());
    const QByteArray folder = qgetenv("VOXTREL_SCREENSHOTS");
    if (!folder.isEmpty()) {
      support::SaveScreenshot(*User::GetWindow(),
                              QString::fromLocal8Bit(folder) + QStringLiteral("/connection.png"));
    }
  });
}

TEST_F(ConnectionPageScreen, CancelClosesTheSheetAndStoresNothing) {
  m_ui.OfferCancel();
  EXPECT_FALSE(Run([] {
    User::Choose(kStopBitsComboId, 2);
    auto* cancel = User::GetWindow()->findChild<QPushButton*>("cancel");
    ASSERT_NE(cancel, nullptr);
    ASSERT_TRUE(User::TabTo(cancel));
    User::Click(cancel);
  }));
  EXPECT_TRUE(Stored(u"Stop_bit").empty());
}

TEST_F(ConnectionPageScreen, ARemarkAboveOkFollowsThePort) {
  PutPort(u"COM1:");
  m_ui.SetRemark(kPortComboId, [](const QString& port) { return port + u'?'; });
  Run([] {
    const auto* remark = User::GetWindow()->findChild<QLabel*>("remark");
    EXPECT_EQ(remark->text(), "COM2:?");
    User::Choose(kPortComboId, 0);
    EXPECT_EQ(remark->text(), "COM1:?");
    QTest::keyClicks(User::FindCombo(kPortComboId), "9");
    EXPECT_EQ(remark->text(), User::FindCombo(kPortComboId)->currentText() + "?");
    User::PressOk();
  });
  EXPECT_EQ(Stored(u"Com_port").size(), 200U);
}

TEST_F(ConnectionPageScreen, EachPortOfTheListHasItsRemarkAsToolTipAndForScreenReaders) {
  PutPort(u"COM1:");
  m_ui.SetRemark(kPortComboId, [](const QString& port) { return port + " is <b>"; });
  Run([] {
    const QComboBox* ports = User::FindCombo(kPortComboId);
    EXPECT_EQ(ports->itemText(0), "COM1:");
    EXPECT_EQ(ports->itemData(0, Qt::AccessibleDescriptionRole), "COM1: is <b>");
    EXPECT_TRUE(ports->itemData(0, Qt::ToolTipRole).toString().contains("COM1: is &lt;b&gt;"));
  });
}

TEST_F(ConnectionPageScreen, NothingCanBeTypedAsFlowControl) {
  Run([] {
    EXPECT_FALSE(User::FindCombo(kFlowControlComboId)->isEditable());
    EXPECT_EQ(User::FindCombo(kFlowControlComboId)->currentText(), "none");
  });
}

TEST_F(ConnectionPageScreen, TheFieldOfEachBoxHasTheNameOfTheBox) {
  Run([] {
    for (const int id : {kPortComboId, kBaudRateComboId, kDataBitsComboId, kStopBitsComboId}) {
      const QComboBox* combo = User::FindCombo(id);
      EXPECT_FALSE(combo->accessibleName().isEmpty()) << id;
      EXPECT_EQ(combo->lineEdit()->accessibleName(), combo->accessibleName()) << id;
    }
  });
}

TEST_F(ConnectionPageScreen, ShowsTheTextsOfItsCheckBoxesToTheirEnd) {
  Run([] {
    const auto* headset = dynamic_cast<QCheckBox*>(User::Find(kHeadsetCheckId));
    const auto* noHangUp = dynamic_cast<QCheckBox*>(User::Find(kNoHangUpCheckId));
    EXPECT_EQ(headset->text(), "Use BT headset for Ericsson phones only");
    EXPECT_LE(headset->sizeHint().width(), headset->width());
    EXPECT_LE(noHangUp->sizeHint().width(), noHangUp->width());
    EXPECT_EQ(headset->font().pixelSize(), noHangUp->font().pixelSize())
        << "Letters of one size, as those of buttons.";
  });
}

/// The same in another language, which the desktop has and no language file gives.
class ConnectionPageInALanguage : public ConnectionPageScreen,
                                  public testing::WithParamInterface<const char*> {
 protected:
  ConnectionPageInALanguage() {
    qt::EnsureApplication();  // Else it would follow the desktop when the window opens.
    ChooseLanguage(GetParam());
  }
  ~ConnectionPageInALanguage() override { ChooseLanguage({}); }
};

TEST_P(ConnectionPageInALanguage, ShowsEachOfItsTextsTranslatedAndWhole) {
  Run([] {
    const QDialog& window = *User::GetWindow();
    EXPECT_EQ(User::FindButton(kDefaultsButtonId)->text().remove(u'&'), qt::Say(kDefaultsLabel));
    EXPECT_NE(qt::Say(kDefaultsLabel), qt::ToQString(kDefaultsLabel));
    for (const auto* label : window.findChildren<QLabel*>()) {
      if (label->isVisible() && !label->text().isEmpty() && label->width() > 0) {
        EXPECT_LE(label->fontMetrics().horizontalAdvance(label->text()), label->width())
            << label->text().toStdString();
      }
    }
    for (const auto* box : window.findChildren<QCheckBox*>()) {
      EXPECT_LE(box->sizeHint().width(), box->width()) << box->text().toStdString();
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Languages, ConnectionPageInALanguage,
                         testing::Values("de", "es", "fr", "ru", "zh-Hans"));

}  // namespace

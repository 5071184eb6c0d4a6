#include <gtest/gtest.h>

#include <array>

#include "backends/headless/headless_dialog.h"
#include "backends/headless/headless_ui.h"
#include "framework/dialog.h"

namespace {

constexpr int kEditable = 1;
constexpr int kList = 2;
constexpr int kDisabled = 3;
constexpr std::array<resources::ControlTemplate, 3> kControls{{
    {kEditable, resources::ControlKind::kEditableComboBox, u"", {}},
    {kList, resources::ControlKind::kComboBox, u"", {}},
    {kDisabled, resources::ControlKind::kEditableComboBox, u"", {}, true, false},
}};
constexpr resources::DialogTemplate kDialog{1, u"", 10, 10, kControls};

class EditableComboBox : public testing::Test {
 protected:
  EditableComboBox() {
    m_dialog.AddItem(kEditable, u"one");
    m_dialog.AddItem(kEditable, u"two");
  }

  headless::HeadlessUi m_ui;
  framework::CPropertyPage m_page{kDialog, m_ui};
  headless::HeadlessDialog m_dialog{kDialog, m_page, nullptr};
};

TEST_F(EditableComboBox, AnItemThatIsChosenPutsItsTextIntoTheField) {
  EXPECT_EQ(m_dialog.GetText(kEditable), u"");
  m_dialog.Choose(kEditable, 1);
  EXPECT_EQ(m_dialog.GetText(kEditable), u"two");
  m_dialog.SetSelection(kEditable, 0);
  EXPECT_EQ(m_dialog.GetText(kEditable), u"one");
}

TEST_F(EditableComboBox, ATextInTheFieldLeavesTheItemsAlone) {
  m_dialog.Choose(kEditable, 1);
  m_dialog.Type(kEditable, u"three");
  EXPECT_EQ(m_dialog.GetText(kEditable), u"three");
  EXPECT_EQ(m_dialog.GetItemCount(kEditable), 2);
  m_dialog.SetSelection(kEditable, std::nullopt);
  EXPECT_EQ(m_dialog.GetText(kEditable), u"three");
}

TEST_F(EditableComboBox, NobodyTypesIntoAListOrADisabledBox) {
  m_dialog.Type(kList, u"three");
  m_dialog.Type(kDisabled, u"three");
  m_dialog.Type(99, u"three");
  EXPECT_EQ(m_dialog.GetText(kList), u"");
  EXPECT_EQ(m_dialog.GetText(kDisabled), u"");
}

}  // namespace

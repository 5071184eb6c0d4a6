#include "connection/connection_page.h"

#include <gtest/gtest.h>

#include "tests/connection/connection_fixture.h"
#include "tests/support/registry_access.h"
#include "tests/support/results.h"

namespace {

using connection::ToSettingValue;
using namespace resources;
using platform::RegistryType;

class ConnectionPage : public ConnectionFixture {};

TEST_F(ConnectionPage, HasTheListsInTheirOrder) {
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetItems(kBaudRateComboId),
            (Texts{u"256000", u"128000", u"115200", u"57600", u"56000", u"38400", u"19200",
                   u"14400", u"9600", u"4800", u"2400", u"1200", u"600", u"300", u"110"}));
  EXPECT_EQ(dialog.GetItems(kDataBitsComboId), (Texts{u"4", u"5", u"6", u"7", u"8"}));
  EXPECT_EQ(dialog.GetItems(kStopBitsComboId), (Texts{u"1", u"1.5", u"2"}));
  EXPECT_EQ(dialog.GetItems(kFlowControlComboId), (Texts{u"hardware", u"software", u"none"}));
}

TEST_F(ConnectionPage, ShowsTheDefaultsIfNothingIsStored) {
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetText(kPortComboId), u"COM2:");
  EXPECT_EQ(dialog.GetText(kBaudRateComboId), u"9600");
  EXPECT_EQ(dialog.GetText(kDataBitsComboId), u"8");
  EXPECT_EQ(dialog.GetText(kStopBitsComboId), u"1");
  EXPECT_EQ(dialog.GetText(kFlowControlComboId), u"none");
  EXPECT_FALSE(dialog.IsChecked(kHeadsetCheckId));
  EXPECT_FALSE(dialog.IsChecked(kNoHangUpCheckId));
  EXPECT_EQ(dialog.GetSelection(kBaudRateComboId), 8);
  EXPECT_EQ(dialog.GetSelection(kDataBitsComboId), 4);
  EXPECT_EQ(dialog.GetSelection(kStopBitsComboId), 0);
  EXPECT_EQ(dialog.GetSelection(kFlowControlComboId), 2);
}

TEST_F(ConnectionPage, ListsTheActivePortsTheHighestFirst) {
  PutPort(u"1", u"COM1:");
  PutPort(u"2", u"COM10:");
  PutPort(u"3", u"COM2:");
  PutPort(u"4", u"DSK1:");
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetItems(kPortComboId), (Texts{u"COM10:", u"COM2:", u"COM1:"}));
  EXPECT_EQ(dialog.GetSelection(kPortComboId), 1) << "The default port.";
}

TEST_F(ConnectionPage, SelectsWhatIsStored) {
  PutPort(u"1", u"COM1:");
  PutPort(u"2", u"COM7:");
  PutSetting(u"Com_port", u"COM1:");
  PutSetting(u"Bound_rate", u"115200");
  PutSetting(u"Data_bit", u"7");
  PutSetting(u"Stop_bit", u"1.5");
  PutSetting(u"Flow_control", u"hardware");
  PutSetting(u"is_BT", u"1");
  PutSetting(u"is_HU", u"1");
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetSelection(kPortComboId), 1);
  EXPECT_EQ(dialog.GetText(kPortComboId), u"COM1:");
  EXPECT_EQ(dialog.GetSelection(kBaudRateComboId), 2);
  EXPECT_EQ(dialog.GetText(kBaudRateComboId), u"115200");
  EXPECT_EQ(dialog.GetSelection(kDataBitsComboId), 3);
  EXPECT_EQ(dialog.GetSelection(kStopBitsComboId), 1);
  EXPECT_EQ(dialog.GetSelection(kFlowControlComboId), 0);
  EXPECT_TRUE(dialog.IsChecked(kHeadsetCheckId));
  EXPECT_TRUE(dialog.IsChecked(kNoHangUpCheckId));
}

TEST_F(ConnectionPage, KeepsAStoredValueThatNoListHolds) {
  PutPort(u"1", u"COM1:");
  PutSetting(u"Com_port", u"COM12:");
  PutSetting(u"Bound_rate", u"921600");
  auto& dialog = Open();
  EXPECT_EQ(dialog.GetText(kPortComboId), u"COM12:");
  EXPECT_EQ(dialog.GetSelection(kPortComboId), std::nullopt);
  EXPECT_EQ(dialog.GetText(kBaudRateComboId), u"921600");
  EXPECT_EQ(dialog.GetItemCount(kBaudRateComboId), 15) << "The list stays as it is.";
  m_page->OnOK();
  EXPECT_EQ(Stored(u"Com_port"), Bytes(u"COM12:", 200));
  EXPECT_EQ(Stored(u"Bound_rate"), Bytes(u"921600", 32));
}

TEST_F(ConnectionPage, FlowControlIsAListThatKeepsAStoredWordOfAnotherProgram) {
  PutSetting(u"Flow_control", u"rts");
  auto& dialog = Open();
  EXPECT_EQ(dialog.GetText(kFlowControlComboId), u"rts");
  dialog.SetText(kFlowControlComboId, u"anything");
  EXPECT_EQ(dialog.GetText(kFlowControlComboId), u"rts") << "Nothing can be typed.";
  m_page->OnOK();
  EXPECT_EQ(Stored(u"Flow_control"), Bytes(u"rts", 32));
}

TEST_F(ConnectionPage, AStoredValueIsReadWithoutATerminatorToo) {
  ASSERT_EQ(support::ErrorOf(support::Put(m_registry, storage::kDialerKey, u"Bound_rate",
                                          RegistryType::kString, support::Utf16Bytes(u"4800"))),
            std::nullopt);
  EXPECT_EQ(Open().GetText(kBaudRateComboId), u"4800");
}

TEST_F(ConnectionPage, WhatIsStoredAsNoTextOrEmptyCountsAsNotStored) {
  PutSetting(u"Com_port", u"");
  ASSERT_EQ(support::ErrorOf(support::Put(m_registry, storage::kDialerKey, u"Data_bit",
                                          RegistryType::kDword,
                                          std::vector<std::byte>(4, std::byte{'7'}))),
            std::nullopt);
  const auto& dialog = Open();
  EXPECT_EQ(dialog.GetText(kPortComboId), u"COM2:");
  EXPECT_EQ(dialog.GetText(kDataBitsComboId), u"8");
}

TEST_F(ConnectionPage, OnlyAOneChecksABox) {
  PutSetting(u"is_BT", u"2");
  PutSetting(u"is_HU", u"0");
  const auto& dialog = Open();
  EXPECT_FALSE(dialog.IsChecked(kHeadsetCheckId));
  EXPECT_FALSE(dialog.IsChecked(kNoHangUpCheckId));
}

TEST_F(ConnectionPage, OpeningMakesTheKeyAndNoValue) {
  EXPECT_FALSE(support::KeyExists(m_registry, u"Software\\Zedra\\Zedra Dialer"));
  Open();
  const auto key = m_registry.OpenKey(u"Software\\Zedra\\Zedra Dialer");
  ASSERT_TRUE(key);
  EXPECT_TRUE(support::ValueNames(**key).empty());
}

TEST_F(ConnectionPage, DefaultLeavesThePortAndTheHangUpBoxAlone) {
  PutPort(u"1", u"COM1:");
  auto& dialog = Open();
  dialog.Choose(kPortComboId, 0);
  dialog.Choose(kBaudRateComboId, 0);
  dialog.Choose(kDataBitsComboId, 0);
  dialog.Choose(kStopBitsComboId, 2);
  dialog.Choose(kFlowControlComboId, 0);
  dialog.Press(kHeadsetCheckId);
  dialog.Press(kNoHangUpCheckId);
  dialog.Press(kDefaultsButtonId);
  EXPECT_EQ(dialog.GetText(kBaudRateComboId), u"9600");
  EXPECT_EQ(dialog.GetText(kDataBitsComboId), u"8");
  EXPECT_EQ(dialog.GetText(kStopBitsComboId), u"1");
  EXPECT_EQ(dialog.GetText(kFlowControlComboId), u"none");
  EXPECT_FALSE(dialog.IsChecked(kHeadsetCheckId));
  EXPECT_EQ(dialog.GetText(kPortComboId), u"COM1:");
  EXPECT_TRUE(dialog.IsChecked(kNoHangUpCheckId));
  EXPECT_EQ(Stored(u"Bound_rate"), std::vector<std::byte>()) << "Nothing is stored yet.";
}

TEST_F(ConnectionPage, OkWritesTheSevenValuesInTheirOrderAndLengths) {
  auto& dialog = Open();
  dialog.Press(kNoHangUpCheckId);
  m_page->OnOK();
  const auto opened = m_registry.OpenKey(u"Software\\Zedra\\Zedra Dialer");
  ASSERT_TRUE(opened);
  EXPECT_EQ(support::ValueNames(**opened),
            (Texts{u"Bound_rate", u"Data_bit", u"Stop_bit", u"Flow_control", u"Com_port", u"is_BT",
                   u"is_HU"}));
  EXPECT_EQ(Stored(u"Bound_rate"), Bytes(u"9600", 32));
  EXPECT_EQ(Stored(u"Data_bit"), Bytes(u"8", 32));
  EXPECT_EQ(Stored(u"Stop_bit"), Bytes(u"1", 32));
  EXPECT_EQ(Stored(u"Flow_control"), Bytes(u"none", 32));
  EXPECT_EQ(Stored(u"Com_port"), Bytes(u"COM2:", 200));
  EXPECT_EQ(Stored(u"is_BT"), Bytes(u"0", 4));
  EXPECT_EQ(Stored(u"is_HU"), Bytes(u"1", 4));
  for (const std::u16string& name : support::ValueNames(**opened)) {
    platform::RegistryValue value;
    value = (*opened)->Query(name).value();
    EXPECT_EQ(value.type, RegistryType::kString);
  }
}

TEST_F(ConnectionPage, ATypedTextIsStoredAsFarAsItsFieldReaches) {
  auto& dialog = Open();
  dialog.Type(kBaudRateComboId, u"0123456789abcdefghijklmnopqrstuvwxyz");
  dialog.Type(kPortComboId, std::u16string(250, u'x'));
  m_page->OnOK();
  EXPECT_EQ(Stored(u"Bound_rate"), support::Utf16Bytes(u"0123456789abcdef"));
  EXPECT_EQ(Stored(u"Com_port"), support::Utf16Bytes(std::u16string(100, u'x')));
}

TEST_F(ConnectionPage, WhatWasStoredIsShownAgain) {
  auto& dialog = Open();
  dialog.Choose(kBaudRateComboId, 2);
  dialog.Type(kPortComboId, u"COM33:");
  dialog.Press(kHeadsetCheckId);
  m_page->OnOK();
  const auto& again = Open();
  EXPECT_EQ(again.GetSelection(kBaudRateComboId), 2);
  EXPECT_EQ(again.GetText(kPortComboId), u"COM33:");
  EXPECT_TRUE(again.IsChecked(kHeadsetCheckId));
}

TEST_F(ConnectionPage, TheCommandOfTheSheetsOkStoresToo) {
  Open();
  m_page->OnCommand(1, platform::CommandEvent::kClick);
  EXPECT_EQ(Stored(u"is_HU"), Bytes(u"0", 4));
}

TEST_F(ConnectionPage, OkClosesTheKeyAndASecondOneWritesNothing) {
  auto& dialog = Open();
  m_page->OnOK();
  dialog.Choose(kBaudRateComboId, 0);
  m_page->OnOK();
  EXPECT_EQ(Stored(u"Bound_rate"), Bytes(u"9600", 32));
}

TEST_F(ConnectionPage, OpenedOnceMoreItListsEachChoiceOnce) {
  Open();
  m_page->OnOK();
  m_page->OnInitDialog();
  EXPECT_EQ(m_dialog->GetItemCount(kBaudRateComboId), 15);
  m_dialog->Choose(kBaudRateComboId, 0);
  m_page->OnOK();
  EXPECT_EQ(Stored(u"Bound_rate"), Bytes(u"256000", 32));
}

TEST_F(ConnectionPage, ItsOwnOkButtonIsNeverShownAndDoesNothing) {
  auto& dialog = Open();
  EXPECT_FALSE(dialog.IsVisible(kSaveButtonId));
  EXPECT_FALSE(dialog.IsEnabled(kSaveButtonId));
  dialog.Press(kSaveButtonId);
  EXPECT_TRUE(Stored(u"Bound_rate").empty());
}

TEST_F(ConnectionPage, IsTheDialogUsersKnow) {
  const DialogTemplate& dialog = kConnectionDialog;
  EXPECT_EQ(dialog.id, 130);
  EXPECT_EQ(dialog.caption, u"Skins");
  EXPECT_EQ(dialog.width, 159);
  EXPECT_EQ(dialog.height, 167);
  Texts texts;
  for (const ControlTemplate& control : dialog.controls) {
    if (!control.text.empty()) {
      texts.emplace_back(control.text);
    }
    EXPECT_GE(control.rect.x, 0);
    EXPECT_LE(control.rect.x + control.rect.width, dialog.width);
  }
  EXPECT_EQ(texts, (Texts{u"Connection settings", u"Baud rate:", u"Data bits:", u"Stop bits:",
                          u"Flow control:", u"Use BT headset for Ericsson phones only",
                          u"Don't Use HANG UP", u"Default", u"Ok"}));
  Open().PressEnter();
  EXPECT_TRUE(Stored(u"Bound_rate").empty()) << "Enter means Default, not OK.";
}

TEST_F(ConnectionPage, TheSheetHoldsItAloneAndStoresByOk) {
  std::vector<std::u16string> tabs;
  m_ui.SetSheetStory([&](headless::HeadlessSheet& sheet) {
    tabs = sheet.GetTabTexts();
    sheet.ShowPage(0)->Choose(kBaudRateComboId, 3);
    sheet.PressOk();
  });
  EXPECT_TRUE(connection::RunConnectionSheet(m_ui, m_registry, u"Property"));
  EXPECT_EQ(tabs, Texts{u"Skins"});
  EXPECT_EQ(Stored(u"Bound_rate"), Bytes(u"57600", 32));
}

TEST_F(ConnectionPage, ASheetThatIsClosedStoresNothing) {
  m_ui.SetSheetStory([](headless::HeadlessSheet& sheet) {
    sheet.ShowPage(0)->Choose(kBaudRateComboId, 3);
    sheet.Close();
  });
  EXPECT_FALSE(connection::RunConnectionSheet(m_ui, m_registry, u"Property"));
  EXPECT_TRUE(Stored(u"Bound_rate").empty());
}

TEST(SettingValue, IsAlwaysAsLongAsItsField) {
  auto expected = support::Utf16Bytes(u"9600");
  expected.resize(32);
  EXPECT_EQ(ToSettingValue(u"9600", 32), expected);
  EXPECT_EQ(ToSettingValue(u"", 4), std::vector<std::byte>(4));
}

TEST(SettingValue, ATextAsLongAsItsFieldHasNoTerminator) {
  EXPECT_EQ(ToSettingValue(u"0123456789abcdef", 32), support::Utf16Bytes(u"0123456789abcdef"));
  EXPECT_EQ(ToSettingValue(u"0123456789abcdefgh", 32), support::Utf16Bytes(u"0123456789abcdef"));
}

TEST(SettingValue, EndsAtAZero) {
  EXPECT_EQ(ToSettingValue(std::u16string_view(u"1\0"
                                               u"2",
                                               3),
                           8),
            ToSettingValue(u"1", 8));
}

TEST(SettingValue, NeverEndsWithHalfACharacter) {
  EXPECT_EQ(ToSettingValue(u"1\U0001F600", 4), ToSettingValue(u"1", 4));
}

}  // namespace

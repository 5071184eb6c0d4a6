#include "tags/contact_messages.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "language/language_table.h"

namespace tags {
namespace {

using platform::MessageBox;
using platform::MessageCaption;
using platform::MessageStyle;
using Failure = ContactFailure;
using Reader = ContactReader;

struct Row {
  ContactMessage message;
  std::u16string_view key;
  std::u16string_view english;
};

constexpr PhoneKind Kind(int code) { return static_cast<PhoneKind>(code); }

constexpr Row kKeyedRows[] = {
    {{Failure::kServiceNotReady}, u"ID_S_MESSAGE_D3", u"Failed to initialize COM"},
    {{Failure::kNotConnected}, u"ID_S_MESSAGE_D4", u"Failed to create instance of Pocket Outlook"},
    {{Failure::kNotLoggedOn}, u"ID_S_MESSAGE_D5", u"Failed to logon to Pocket Outlook"},
    {{Failure::kLookup, Reader::kRecording},
     u"ID_S_MESSAGE_D6",
     u"Failed to get IContact in OnRecord"},
    {{Failure::kNumberTooLong}, u"ID_S_MESSAGE_D22", u"Phone number is too long"},
    {{Failure::kItem}, u"ID_S_MESSAGE_19", u"Error in pItems->Item"},
    {{Failure::kNullContact}, u"ID_S_MESSAGE_20", u"pContact == 0!"},

    {{Failure::kNumber, Reader::kLoading, Kind(0)},
     u"ID_S_MESSAGE_D14",
     u"Failed to get car phone number"},
    {{Failure::kNumber, Reader::kLoading, Kind(1)},
     u"ID_S_MESSAGE_D13",
     u"Failed to get radio phone number"},
    {{Failure::kNumber, Reader::kLoading, Kind(2)},
     u"ID_S_MESSAGE_D11",
     u"Failed to get mobile phone number"},
    {{Failure::kNumber, Reader::kLoading, Kind(3)},
     u"ID_S_MESSAGE_D15",
     u"Failed to get assistant phone number"},
    {{Failure::kNumber, Reader::kLoading, Kind(4)},
     u"ID_S_MESSAGE_D16",
     u"Failed to get business phone number"},
    {{Failure::kNumber, Reader::kLoading, Kind(5)},
     u"ID_S_MESSAGE_D17",
     u"Failed to get business2 phone number"},
    {{Failure::kNumber, Reader::kLoading, Kind(6)},
     u"ID_S_MESSAGE_D18",
     u"Failed to get business fax number"},
    {{Failure::kNumber, Reader::kLoading, Kind(7)},
     u"ID_S_MESSAGE_D19",
     u"Failed to get home phone number"},
    {{Failure::kNumber, Reader::kLoading, Kind(8)},
     u"ID_S_MESSAGE_D20",
     u"Failed to get home2 phone number"},
    {{Failure::kNumber, Reader::kLoading, Kind(9)},
     u"ID_S_MESSAGE_D21",
     u"Failed to get home fax number"},

    {{Failure::kNumber, Reader::kRecording, Kind(0)},
     u"ID_S_MESSAGE_D14",
     u"Failed to get car phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(1)},
     u"ID_S_MESSAGE_D13",
     u"Failed to get radio phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(2)},
     u"ID_S_MESSAGE_D11",
     u"Failed to get mobile phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(3)},
     u"ID_S_MESSAGE_D15",
     u"Failed to get assistant phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(4)},
     u"ID_S_MESSAGE_D16",
     u"Failed to get business phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(5)},
     u"ID_S_MESSAGE_D17",
     u"Failed to get business2 phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(6)},
     u"ID_S_MESSAGE_D18",
     u"Failed to get BusinessFax phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(7)},
     u"ID_S_MESSAGE_D19",
     u"Failed to get home phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(8)},
     u"ID_S_MESSAGE_D20",
     u"Failed to get home2 phone number"},
    {{Failure::kNumber, Reader::kRecording, Kind(9)},
     u"ID_S_MESSAGE_D21",
     u"Failed to get HomeFax phone number"},

    {{Failure::kNumber, Reader::kTagList, Kind(0)},
     u"ID_S_MESSAGE_D14",
     u"Failed to get car phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(1)},
     u"ID_S_MESSAGE_D13",
     u"Failed to get Radio phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(2)},
     u"ID_S_MESSAGE_D11",
     u"Failed to get Mobile phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(3)},
     u"ID_S_MESSAGE_D15",
     u"Failed to get Assistant phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(4)},
     u"ID_S_MESSAGE_D16",
     u"Failed to get Business phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(5)},
     u"ID_S_MESSAGE_D17",
     u"Failed to get Business2 phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(6)},
     u"ID_S_MESSAGE_D18",
     u"Failed to get BusinessFax phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(7)},
     u"ID_S_MESSAGE_D19",
     u"Failed to get home phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(8)},
     u"ID_S_MESSAGE_D20",
     u"Failed to get Home2 phone number"},
    {{Failure::kNumber, Reader::kTagList, Kind(9)},
     u"ID_S_MESSAGE_D21",
     u"Failed to get HomeFax phone number"},
};

constexpr Row kNameRows[] = {
    {{Failure::kFirstName}, u"ID_S_MESSAGE_D7", u"Failed to get first name"},
    {{Failure::kMiddleName}, u"ID_S_MESSAGE_D8", u"Failed to get middle name"},
    {{Failure::kLastName}, u"ID_S_MESSAGE_D9", u"Failed to get last name"},
    {{Failure::kCompanyName}, u"ID_S_MESSAGE_D10", u"Failed to get CompanyName"},
};

/// A language file that gives each key its own name as the text.
class ContactMessages : public testing::Test {
 protected:
  void SetUp() override {
    std::u16string file = u"\xFEFF";
    const auto add = [&file](std::u16string_view key) {
      file += std::u16string(key) + u" <" + std::u16string(key) + u">\r\n";
    };
    add(u"ID_S_MESSAGE_DW");
    for (const Row& row : kKeyedRows) {
      add(row.key);
    }
    for (const Row& row : kNameRows) {
      add(row.key);
    }
    file += u"//\r\n//\r\n";
    std::vector<std::byte> bytes;
    for (const char16_t unit : file) {
      bytes.push_back(static_cast<std::byte>(unit & 0xFF));
      bytes.push_back(static_cast<std::byte>(unit >> 8));
    }
    m_table.LoadFrom(bytes);
  }

  [[nodiscard]] MessageBox Translated(const ContactMessage& message) const {
    return ToBox(message, language::Texts(&m_table));
  }
  [[nodiscard]] static MessageBox English(const ContactMessage& message) {
    return ToBox(message, language::Texts());
  }

  static void ExpectRow(const Row& row, const MessageBox& english, const MessageBox& translated) {
    EXPECT_EQ(english.text, row.english);
    EXPECT_EQ(translated.text, u"<" + std::u16string(row.key) + u">");
  }

 private:
  language::LanguageTable m_table;
};

TEST_F(ContactMessages, EveryFailureHasItsKeyAndItsEnglish) {
  for (const Row& row : kKeyedRows) {
    ExpectRow(row, English(row.message), Translated(row.message));
  }
}

TEST_F(ContactMessages, PartsOfTheNameReadTheSameForEveryReader) {
  for (Row row : kNameRows) {
    for (const Reader reader : {Reader::kLoading, Reader::kRecording, Reader::kTagList}) {
      row.message.reader = reader;
      ExpectRow(row, English(row.message), Translated(row.message));
    }
  }
}

TEST_F(ContactMessages, BoxesStandInFrontUnderTheProductsName) {
  for (const Row& row : kKeyedRows) {
    if (row.message.failure <= Failure::kItem) {
      continue;
    }
    const MessageBox english = English(row.message);
    EXPECT_EQ(english.captionKind, MessageCaption::kText);
    EXPECT_EQ(english.caption, u"Zedra Voxtrel");
    EXPECT_EQ(english.style, MessageStyle::kSetForeground);
    const MessageBox translated = Translated(row.message);
    EXPECT_EQ(translated.captionKind, MessageCaption::kText);
    EXPECT_EQ(translated.caption, u"<ID_S_MESSAGE_DW>");
    EXPECT_EQ(translated.style, MessageStyle::kSetForeground);
  }
}

TEST_F(ContactMessages, EnglishBoxesOfTheOpeningAreTopmost) {
  for (const Failure failure :
       {Failure::kServiceNotReady, Failure::kNotConnected, Failure::kNotLoggedOn}) {
    EXPECT_EQ(English({failure}).style, MessageStyle::kTopmost);
    EXPECT_EQ(English({failure}).caption, u"Zedra Voxtrel");
    EXPECT_EQ(Translated({failure}).style, MessageStyle::kSetForeground);
    EXPECT_EQ(Translated({failure}).caption, u"<ID_S_MESSAGE_DW>");
  }
}

TEST_F(ContactMessages, AFailedItemIsShownInThePlainBox) {
  const MessageBox box = English({Failure::kItem});
  EXPECT_EQ(box.captionKind, MessageCaption::kApplication);
  EXPECT_EQ(box.style, MessageStyle::kOk);
}

TEST_F(ContactMessages, BoxesAboutAChosenContactAreNeverTranslated) {
  constexpr std::u16string_view kTexts[] = {
      u"Failed to get car phone number",         u"Failed to get Radio phone number",
      u"Failed to get Mobile phone number",      u"Failed to get Assistant phone number",
      u"Failed to get Business phone number",    u"Failed to get Business2 phone number",
      u"Failed to get BusinessFax phone number", u"Failed to get Home phone number",
      u"Failed to get Home2 phone number",       u"Failed to get HomeFax phone number"};
  for (int code = 0; code < 10; ++code) {
    const MessageBox box = Translated({Failure::kNumber, Reader::kSelection, Kind(code)});
    EXPECT_EQ(box.text, kTexts[code]);
    EXPECT_EQ(box.captionKind, MessageCaption::kText);
    EXPECT_EQ(box.caption, u"Zedra Dialer");
    EXPECT_EQ(box.style, MessageStyle::kSetForeground);
  }
  const MessageBox lookup = Translated({Failure::kLookup, Reader::kSelection});
  EXPECT_EQ(lookup.text, u"Failed to get IContact in OnSelchangeComboName");
  EXPECT_EQ(lookup.caption, u"Zedra Dialer");
}

TEST_F(ContactMessages, ABrokenLanguageFileLeavesEmptyTexts) {
  const language::LanguageTable empty;
  const MessageBox box = ToBox({Failure::kNotLoggedOn}, language::Texts(&empty));
  EXPECT_EQ(box.text, u"");
  EXPECT_EQ(box.caption, u"");
  EXPECT_EQ(box.style, MessageStyle::kSetForeground);
}

}  // namespace
}  // namespace tags

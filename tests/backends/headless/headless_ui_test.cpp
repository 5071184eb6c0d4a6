#include "backends/headless/headless_ui.h"

#include <gtest/gtest.h>

namespace {

using headless::HeadlessUi;
using headless::ShownMessage;
using platform::MessageAnswer;
using platform::MessageBox;
using platform::MessageCaption;
using platform::MessageStyle;

TEST(HeadlessUi, AnswersOkByItself) {
  HeadlessUi ui;
  EXPECT_EQ(ui.ShowMessage({u"text", MessageCaption::kText, u"caption", MessageStyle::kOkCancel}),
            MessageAnswer::kOk);
}

TEST(HeadlessUi, RemembersEachBoxWithStyleAndCaption) {
  HeadlessUi ui;
  const MessageStyle style = MessageStyle::kOkCancel | MessageStyle::kTopmost;
  ui.ShowMessage({u"first", MessageCaption::kText, u"Attention", style});
  ui.ShowMessage(platform::ApplicationBox(u"100%s"));
  const std::vector<ShownMessage> messages = ui.GetMessages();
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_EQ(messages[0].box.text, u"first");
  EXPECT_EQ(messages[0].caption, u"Attention");
  EXPECT_EQ(messages[0].box.style, style);
  EXPECT_EQ(messages[1].box.text, u"100%s");
  EXPECT_EQ(messages[1].box.captionKind, MessageCaption::kApplication);
}

TEST(HeadlessUi, ThePlainBoxBearsTheNameOfTheApplication) {
  HeadlessUi ui(u"Application");
  ui.ShowMessage(platform::ApplicationBox(u"text"));
  EXPECT_EQ(ui.GetMessages().at(0).caption, u"Application");
}

TEST(HeadlessUi, ABoxWithoutCaptionHasNone) {
  HeadlessUi ui(u"Application");
  ui.ShowMessage({u"text", MessageCaption::kNone, u"meaningless", MessageStyle::kOk});
  EXPECT_EQ(ui.GetMessages().at(0).caption, u"");
}

TEST(HeadlessUi, TheAnswererDecides) {
  HeadlessUi ui;
  ui.SetAnswerer([](const MessageBox& box) {
    return box.text == u"sure?" ? MessageAnswer::kCancel : MessageAnswer::kOk;
  });
  EXPECT_EQ(ui.ShowMessage(platform::ApplicationBox(u"sure?")), MessageAnswer::kCancel);
  EXPECT_EQ(ui.ShowMessage(platform::ApplicationBox(u"done")), MessageAnswer::kOk);
  EXPECT_EQ(ui.GetMessages().at(0).answer, MessageAnswer::kCancel);
}

TEST(HeadlessUi, TheListenerHearsTheAnsweredBox) {
  HeadlessUi ui(u"Application");
  std::u16string heard;
  ui.SetListener(
      [&](const ShownMessage& shown) { heard += shown.caption + u": " + shown.box.text + u"\n"; });
  ui.ShowMessage(platform::ApplicationBox(u"one"));
  ui.ShowMessage({u"two", MessageCaption::kText, u"Attention", MessageStyle::kOk});
  EXPECT_EQ(heard, u"Application: one\nAttention: two\n");
}

TEST(HeadlessUi, ABoxMayLeadToAnother) {
  HeadlessUi ui;
  ui.SetListener([&](const ShownMessage& shown) {
    if (shown.box.text == u"first") {
      ui.ShowMessage(platform::ApplicationBox(u"second"));
    }
  });
  ui.ShowMessage(platform::ApplicationBox(u"first"));
  EXPECT_EQ(ui.GetMessages().size(), 2U);
}

}  // namespace

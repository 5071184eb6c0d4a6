// The dialogs at the scale of the screen, which the user chooses in the settings of the system. The
// program runs once for each: tests/windows/scales.py sets it.

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <string>

#include "backends/text/utf.h"
#include "backends/win32/win32_ui.h"
#include "framework/dialog.h"
#include "framework/item_list.h"
#include "resources/dialogs.h"
#include "tests/backends/win32/user.h"

namespace {

using resources::ControlKind;
using support::User;

constexpr std::array kDialogs{&resources::kLearningDialog,   &resources::kAboutDialog,
                              &resources::kConnectionDialog, &resources::kTestResultsDialog,
                              &resources::kReinitDialog,     &resources::kComparisonDialog};

/// The scale that the test asks for, in percent.
int Percent() {
  const char* const wanted = std::getenv("VOXTREL_SCREEN_PERCENT");
  return wanted == nullptr ? 100 : std::atoi(wanted);
}

RECT PlaceIn(HWND dialog, HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

/// Returns how large a text of one line is in the font of its control.
SIZE MeasureTextOf(HWND control) {
  const HDC context = GetDC(control);
  const HGDIOBJ earlier =
      SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
  const std::wstring text = User::TextOf(control);
  SIZE size{};
  GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
  SelectObject(context, earlier);
  ReleaseDC(control, context);
  return size;
}

bool HasText(ControlKind kind) {
  return kind == ControlKind::kStatic || kind == ControlKind::kCenteredStatic ||
         kind == ControlKind::kPushButton || kind == ControlKind::kDefaultPushButton ||
         kind == ControlKind::kCheckBox;
}

/// Calls `look` with each control of each dialog while it is shown.
void LookAtEach(const std::function<void(HWND dialog, HWND control,
                                         const resources::ControlTemplate& description)>& look) {
  win32::UiThread thread;
  win32::Win32Ui ui(thread, u"Zedra", nullptr);
  for (const resources::DialogTemplate* const dialog : kDialogs) {
    framework::CDialog shown(*dialog, ui);
    User::WhenShown([&](HWND window) {
      HWND control = GetWindow(window, GW_CHILD);
      for (const resources::ControlTemplate& description : dialog->controls) {
        SCOPED_TRACE("dialog " + std::to_string(dialog->id) + ", control " +
                     std::to_string(description.id));
        look(window, control, description);
        control = GetWindow(control, GW_HWNDNEXT);
      }
      shown.EndDialog(1);
    });
    EXPECT_EQ(shown.DoModal(), 1);
    User::Leave();
  }
}

TEST(Win32Scale, TheFontIsThatOfTheSystemAtTheScaleOfTheScreen) {
  LookAtEach([](HWND dialog, HWND control, const resources::ControlTemplate& /*description*/) {
    RECT units{0, 0, 4, 8};
    ASSERT_TRUE(MapDialogRect(dialog, &units));
    // Tahoma of 8 points has letters of 6 by 13 pixels. Larger ones are rounded.
    EXPECT_NEAR(static_cast<double>(units.right), 0.06 * Percent(), 1);
    EXPECT_NEAR(static_cast<double>(units.bottom), 0.13 * Percent(), 1);
    LOGFONTW form{};
    const auto font = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
    ASSERT_NE(GetObjectW(font, sizeof(form), &form), 0);
    EXPECT_STREQ(form.lfFaceName, L"MS Shell Dlg");
    EXPECT_EQ(form.lfHeight, -MulDiv(8, 96 * Percent() / 100, 72));
  });
}

TEST(Win32Scale, EveryControlStandsWhereItsDialogUnitsSayAndWhollyInItsDialog) {
  LookAtEach([](HWND dialog, HWND control, const resources::ControlTemplate& description) {
    const resources::DialogRect& units = description.rect;
    RECT expected{units.x, units.y, units.x + units.width, units.y + units.height};
    MapDialogRect(dialog, &expected);
    const RECT place = PlaceIn(dialog, control);
    EXPECT_EQ(place.left, expected.left);
    EXPECT_EQ(place.top, expected.top);
    // A picture has a size of its own, and the height of a box is that of the list that drops down.
    if (description.kind != ControlKind::kPicture) {
      EXPECT_NEAR(static_cast<double>(place.right), static_cast<double>(expected.right), 1);
      if (!framework::ItemList::IsFor(description.kind) ||
          description.kind == ControlKind::kListBox) {
        EXPECT_NEAR(static_cast<double>(place.bottom), static_cast<double>(expected.bottom), 1);
      }
    }
    RECT whole{};
    GetClientRect(dialog, &whole);
    EXPECT_LE(place.right, whole.right);
    EXPECT_LE(place.bottom, whole.bottom);
  });
}

TEST(Win32Scale, NoTextIsCutOff) {
  LookAtEach([](HWND /*dialog*/, HWND control, const resources::ControlTemplate& description) {
    if (HasText(description.kind)) {
      RECT room{};
      GetClientRect(control, &room);
      const SIZE text = MeasureTextOf(control);
      EXPECT_LE(text.cx, room.right) << text::ToUtf8(description.text);
      EXPECT_LE(text.cy, room.bottom) << text::ToUtf8(description.text);
    }
  });
}

}  // namespace

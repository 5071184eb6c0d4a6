#pragma once

#include <string_view>

// Widths in tenths of a pixel, for Tahoma at 8 points and 96 dots an inch: about the mean of the
// font's own widths in each class of characters. Close enough to know a word that fits from one
// that is cut, which is all that is asked of it.

constexpr int CharacterWidth(char16_t c) {
  constexpr std::u16string_view kNarrow = u"iljtfrI.,:;!'() \u00A0";
  constexpr std::u16string_view kWide = u"mwMWшщжюыфмШЩЖЮФМ";
  if (kNarrow.find(c) != std::u16string_view::npos) {
    return 30;
  }
  if (kWide.find(c) != std::u16string_view::npos) {
    return 90;
  }
  if (c >= 0x2E80) {
    return 110;  // Han characters and full-width punctuation.
  }
  const bool isCapital = (c >= u'A' && c <= u'Z') || (c >= u'\u00C0' && c <= u'\u00DE') ||
                         (c >= u'\u0410' && c <= u'\u042F');
  return isCapital ? 70 : 58;
}

constexpr int TextWidth(std::u16string_view text) {
  int width = 0;
  for (const char16_t c : text) {
    width += CharacterWidth(c);
  }
  return width;
}

// Four horizontal dialog units are six pixels in this font.
constexpr int LabelRoom(int dialogUnits) { return dialogUnits * 60 / 4; }

// Two pixels of edge on each side of a button.
constexpr int ButtonRoom(int dialogUnits) { return LabelRoom(dialogUnits) - 40; }

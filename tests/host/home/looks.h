#pragma once

#include <QApplication>
#include <QPalette>
#include <QString>
#include <QStyle>
#include <QWidget>
#include <cstdio>
#include <vector>

namespace home_test {

/// How the desktop is set on which a picture is made.
struct Look {
  const char* name;
  QSize size;
  int points = 10;
  bool isDark = false;
  bool isFromTheRight = false;
};

inline std::vector<Look> GetLooks() {
  return {{"desk", {900, 600}},
          {"desk_dark", {900, 600}, 10, true},
          {"desk_rtl", {900, 600}, 10, false, true},
          {"desk_20", {1300, 800}, 20},
          {"wide", {2560, 900}, 12, true},
          {"mid", {640, 500}, 9},
          {"phone", {360, 640}},
          {"phone_dark", {360, 640}, 10, true},
          {"phone_rtl", {360, 640}, 10, false, true},
          {"phone_20", {360, 640}, 20}};
}

inline void Apply(const Look& look) {
  QFont font = QApplication::font();
  font.setPointSize(look.points);
  QApplication::setFont(font);
  QPalette palette = QApplication::style()->standardPalette();
  if (look.isDark) {
    palette = QPalette(QColor(53, 53, 53));
    palette.setColor(QPalette::Window, QColor(45, 45, 45));
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    palette.setColor(QPalette::AlternateBase, QColor(40, 40, 40));
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
  }
  QApplication::setPalette(palette);
  QApplication::setLayoutDirection(look.isFromTheRight ? Qt::RightToLeft : Qt::LeftToRight);
}

/// Keeps a picture of what is shown, under a name of state and look.
inline void Save(QWidget& shown, const QString& folder, const Look& look, const char* state) {
  constexpr int kRounds = 5;  // A layout may ask for another one.
  for (int i = 0; i < kRounds; ++i) {
    QApplication::processEvents();
  }
  const QString name = QStringLiteral("%1_%2").arg(QLatin1String(state), QLatin1String(look.name));
  if (!shown.grab().save(folder + u'/' + name + QStringLiteral(".png"))) {
    std::fprintf(stderr, "not written: %s\n", qPrintable(name));
  }
}

/// Each paints the states of a part of the window in one look.
void PaintList(const Look& look, const QString& folder);
void PaintPages(const Look& look, const QString& folder);
void PaintSetup(const Look& look, const QString& folder);

}  // namespace home_test

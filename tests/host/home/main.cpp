#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  // Before the first window, and for every process that a test starts.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Tests read and write nothing of the user.
  for (const char* variable :
       {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "BROWSER"}) {
    qputenv(variable, "/none");
  }
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}

#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  // Tests hear and change nothing of the user.
  qputenv("PULSE_SERVER", "unix:/none");
  for (const char* variable : {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME"}) {
    qputenv(variable, "/none");
  }
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}

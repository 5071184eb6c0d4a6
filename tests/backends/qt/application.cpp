#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

namespace support {
namespace {

std::unique_ptr<QApplication> MakeApplication() {
  // A test may have named a screen of its own.
  if (!qgetenv("QT_QPA_PLATFORM").startsWith("offscreen")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  static int argumentCount = 1;
  static char name[] = "qt_test";
  static char* arguments[] = {name, nullptr};
  return std::make_unique<QApplication>(argumentCount, arguments);
}

/// Ends it before the library's own statics go.
class ApplicationEnd final : public testing::Environment {
 public:
  void SetUp() override { m_application = MakeApplication(); }
  void TearDown() override { m_application.reset(); }

 private:
  std::unique_ptr<QApplication> m_application;
};

[[maybe_unused]] const testing::Environment* const kEnd =
    testing::AddGlobalTestEnvironment(new ApplicationEnd);

}  // namespace

}  // namespace support

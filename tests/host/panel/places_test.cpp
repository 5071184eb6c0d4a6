#include "host/panel/places.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include "tests/host/panel/panel_fixture.h"

namespace {

class Places : public ::testing::Test {
 protected:
  QString Make(const char* name) {
    QFile file(Path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    return Path(name);
  }
  [[nodiscard]] QString Path(const char* name) const {
    return m_folder.filePath(QLatin1String(name));
  }

  QTemporaryDir m_folder;
};

TEST_F(Places, OfAFolderAreItsAppletsByName) {
  const QString second = Make("b.cpl");
  const QString first = Make("a.cpl");
  Make("c.so");
  QDir(m_folder.path()).mkdir(QStringLiteral("d.cpl"));
  EXPECT_EQ(panel::FindApplets({m_folder.path()}), QStringList({first, second}));
}

TEST_F(Places, NamedByFileNeedNoEnding) {
  const QString file = Make("some.library");
  EXPECT_EQ(panel::FindApplets({file}), QStringList({file}));
}

TEST_F(Places, AreListedOnce) {
  const QString file = Make("a.cpl");
  EXPECT_EQ(panel::FindApplets({file, m_folder.path()}), QStringList({file}));
}

TEST_F(Places, ThatAreNotThereHoldNothing) {
  EXPECT_TRUE(panel::FindApplets({Path("missing"), Path("missing.cpl")}).isEmpty());
}

TEST_F(Places, AFullPathIsThatFile) {
  EXPECT_EQ(panel::FindApplet(QStringLiteral("/opt/here.cpl")), QStringLiteral("/opt/here.cpl"));
}

TEST_F(Places, ANameIsThatOfAnInstalledAppletWhateverIsInTheCurrentFolder) {
  const QString name = QFileInfo(Make("here.cpl")).fileName();
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(m_folder.path()));
  EXPECT_EQ(panel::FindApplet(name), panel::AppletFolder() + QStringLiteral("/here.cpl"));
  ASSERT_TRUE(QDir::setCurrent(before));
}

TEST_F(Places, OfABuildAreInThatBuild) {
  const QString panel = QFileInfo(panel_test::Program()).canonicalPath();
  EXPECT_EQ(panel::AppletFolder(), QDir::cleanPath(panel + QStringLiteral("/../applet")));
}

}  // namespace

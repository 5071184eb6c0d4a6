#include "backends/qt/application.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <QWindow>
#include <string_view>
#include <utility>

#include "resources/translations.h"

namespace qt {
namespace {

/// The library ends the process if it finds no display, so this asks the environment before it. A
/// platform that was named by hand, such as "offscreen", needs none.
bool HasDisplay() {
  return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || !qEnvironmentVariableIsEmpty("DISPLAY");
}

}  // namespace

bool CanShowWindows() {
  const QCoreApplication* const application = QCoreApplication::instance();
  return application == nullptr ? HasDisplay()
                                : qobject_cast<const QApplication*>(application) != nullptr;
}

void EnsureApplication() {
  if (QCoreApplication::instance() == nullptr) {
    // It is never destroyed: what the library registered with the desktop is used until the process
    // ends, and no other object could say when nobody needs it any more.
    static int argumentCount = 1;
    static char programName[] = "voxtrel";
    static char* arguments[] = {programName, nullptr};
    static QApplication* application = new QApplication(argumentCount, arguments);
    static_cast<void>(application);
  }
  // Once for a process: which language the desktop has is read once, too.
  static const bool kIsFollowed = (FollowDesktopLanguage(), true);
  static_cast<void>(kIsFollowed);
}

// The desktop has a list of languages, the one that the user prefers first. English in it ends the
// search: who prefers it to German must not get German.
void FollowDesktopLanguage() {
  std::string_view language;
  for (const QString& wanted : QLocale::system().uiLanguages()) {
    language = resources::FindLanguage(wanted.toStdString());
    if (!language.empty() || wanted.startsWith(QStringLiteral("en")) ||
        wanted == QStringLiteral("C")) {
      break;
    }
  }
  resources::ChooseLanguage(language);
  // Never destroyed, as the application object may outlive what is static here.
  static auto* const kTranslator = new QTranslator;
  // A second call may choose another language, and a translator that is installed twice answers
  // twice.
  QCoreApplication::removeTranslator(kTranslator);
  if (language.empty()) {
    return;
  }
  // The library names its files by country for Chinese, and by language for the others.
  const QString name =
      language == "zh-Hans" ? QStringLiteral("zh_CN") : QString::fromUtf8(language.data(), 2);
  if (kTranslator->load(QStringLiteral("qtbase_") + name,
                        QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(kTranslator);
  }
  // A user who reads German reads "1,5 s" and "14. März", even if the desktop's own dates are
  // English.
  constexpr int kMarch = 3;
  const QLocale locale(name);
  if (QLocale::system().monthName(kMarch) != locale.monthName(kMarch)) {
    QLocale::setDefault(locale);
  }
}

void BringWindowsForward(const std::string& activationToken) {
  if (!activationToken.empty()) {
    // Where the library looks for it.
    qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken));
  }
  for (QWindow* const window : QGuiApplication::topLevelWindows()) {
    if (window->isVisible() && window->type() != Qt::ToolTip) {
      window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
      window->raise();
      window->requestActivate();
    }
  }
}

DescriptorWatch::DescriptorWatch(int descriptor, std::function<void()> onReadable)
    : m_notifier(descriptor, QSocketNotifier::Read) {
  QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier,
                   [onReadable = std::move(onReadable)] { onReadable(); });
}

}  // namespace qt

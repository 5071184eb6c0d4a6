#pragma once

#include <QFrame>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

class QLabel;
class QPushButton;

namespace panel {

// What the panel does for a newcomer: it looks whether the voice dialer's applet has contacts and a
// microphone, says what is missing, and offers recordings to try the applet with.

/// What the voice dialer's applet finds on this machine.
struct Equipment {
  int contacts = 0;
  QString contactsProblem;  ///< Why there are none; can be empty.
  int microphones = 0;
};

/// Reads what `voxtrel --json status` prints. Returns nothing if the bytes are not that.
[[nodiscard]] std::optional<Equipment> ParseEquipment(const QByteArray& json);

/// Returns what is missing and how to supply it, for a newcomer. Returns an empty text if nothing
/// is missing.
[[nodiscard]] QString DescribeMissing(const Equipment& equipment);

/// Asks the command line, in a process of its own, since the address books can take long to answer.
class EquipmentCheck {
 public:
  /// `answer` is called from the event loop. It is not called if the command line is not there or
  /// gives no answer.
  explicit EquipmentCheck(const QString& commandLine,
                          std::function<void(const Equipment& equipment)> answer);
  EquipmentCheck(const EquipmentCheck&) = delete;
  EquipmentCheck& operator=(const EquipmentCheck&) = delete;
  ~EquipmentCheck();

 private:
  QProcess m_process;
};

/// A bar that says what is missing on this machine, and offers a way on. Hidden until there is
/// something to say.
class NoticeBar : public QFrame {
 public:
  explicit NoticeBar(QWidget* parent);

  /// Shows the text. Hides the bar if the text is empty. If `action` is null, the only button is
  /// the one that hides the bar.
  void Show(const QString& text, const QString& button, const std::function<void()>& action);

 private:
  QLabel* m_text;
  QPushButton* m_button;
};

/// One of the recordings that stand in for a microphone.
struct Sample {
  QString name;  ///< The name that is said in it.
  QString path;
};

/// Returns the shipped recordings, one for each name. Returns none if they are not installed.
[[nodiscard]] std::vector<Sample> FindSamples();

/// Returns the surroundings in which the applet hears `recording` and knows the shipped contacts,
/// as "NAME=value". It leaves the user's own voice tags alone.
[[nodiscard]] QStringList SampleEnvironment(const QString& recording);

}  // namespace panel

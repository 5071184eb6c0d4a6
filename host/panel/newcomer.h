#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

namespace panel {

/// What the voice dialer's applet finds on this machine.
struct Equipment {
  int contacts = 0;
  QString contactsProblem;  ///< Why there are none, and what helps; can be empty.
  int microphones = 0;
};

/// Nothing where the bytes are not what `voxtrel --json status` prints.
[[nodiscard]] std::optional<Equipment> ParseEquipment(const QByteArray& json);

/// What a newcomer should be told: what is missing and how to supply it. Empty where nothing is.
[[nodiscard]] QString DescribeMissing(const Equipment& equipment);

/// Asks the command line, in a process of its own, since the address books can take long to answer.
class EquipmentCheck {
 public:
  /// `answer` is told from the event loop, and not at all where the command line is not there or
  /// gives no answer.
  explicit EquipmentCheck(const QString& commandLine,
                          std::function<void(const Equipment& equipment)> answer);
  EquipmentCheck(const EquipmentCheck&) = delete;
  EquipmentCheck& operator=(const EquipmentCheck&) = delete;
  ~EquipmentCheck();

 private:
  QProcess m_process;
};

/// One of the recordings that stand in for a microphone.
struct Sample {
  QString name;  ///< Who is said in it.
  QString path;
};

/// The shipped recordings, one for each name; none where they are not installed.
[[nodiscard]] std::vector<Sample> FindSamples();

/// The surroundings in which the applet hears `recording` and knows the shipped contacts, and
/// leaves the user's own voice tags alone.
[[nodiscard]] QStringList SampleEnvironment(const QString& recording);

}  // namespace panel

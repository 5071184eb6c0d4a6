#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

namespace panel {

/// What an opened applet writes on its standard error: lines that begin with its file's name are
/// meant for the user, all others are passed on. Of a line the first 4,096 bytes count.
class ErrorLines {
 public:
  using PassOn = std::function<void(const QByteArray& line)>;

  ErrorLines(QByteArray prefix, PassOn passOn);

  /// Takes the next bytes, in whatever pieces they arrive.
  void Take(const QByteArray& bytes);
  /// No more bytes follow: what has arrived of a line counts as a line.
  void End();

  /// The last line that was meant for the user, without the prefix; empty if there was none.
  [[nodiscard]] const QString& GetMessage() const { return m_message; }

 private:
  void TakeLine(const QByteArray& line);

  QByteArray m_prefix;
  PassOn m_passOn;
  QByteArray m_begun;  ///< The line that has not ended yet.
  QString m_message;
};

}  // namespace panel

#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

#include "platform/result.h"

namespace panel {

/// What the panel shows of one applet.
struct AppletReport {
  QString name;     ///< Empty if the applet gave none.
  QByteArray icon;  ///< SVG; empty for the plain icon.
};

/// What the process that asked a library reports to the panel: the applets, or the problem because
/// of which they cannot be used. The problem completes a sentence that begins with "This applet".
using LibraryReport = platform::Result<std::vector<AppletReport>, QString>;

[[nodiscard]] QByteArray ToBytes(const LibraryReport& report);

/// Why bytes are no report.
enum class ReportError : std::uint8_t {
  kCutShort,  ///< The process ended before it had written all, or anything.
  kForeign,   ///< It wrote something else, or more than a report.
};

/// Returns the report in `bytes`. Control characters in its texts become blanks.
[[nodiscard]] platform::Result<LibraryReport, ReportError> FromBytes(const QByteArray& bytes);

/// Asks one library for its applets in a process of its own, since a library may crash or hang.
class Inquiry {
 public:
  /// Called once, from the event loop.
  using Answer = std::function<void(const LibraryReport& report)>;

  /// Starts the process. `program` is the panel itself. A library that gives no answer within
  /// `limit` has a problem. The end of the object ends the process, and then there is no answer.
  Inquiry(const QString& program, const QString& library, std::chrono::milliseconds limit,
          Answer answer);
  Inquiry(const Inquiry&) = delete;
  Inquiry& operator=(const Inquiry&) = delete;
  ~Inquiry();

 private:
  void Finish(const QString& problem);

  QProcess m_process;
  QTimer m_limit;
  Answer m_answer;
};

}  // namespace panel

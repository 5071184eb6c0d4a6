#pragma once

#include <QProcess>
#include <QString>
#include <QTimer>
#include <chrono>
#include <functional>

#include "host/panel/report.h"

namespace panel {

/// Asks one library for its applets in a process of its own, since a library may crash or hang.
class Inquiry {
 public:
  /// Told once, from the event loop: the applets, or the problem.
  using Answer = std::function<void(const LibraryReport& report)>;

  /// `program` is the panel itself.
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

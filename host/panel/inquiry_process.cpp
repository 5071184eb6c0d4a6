#include "host/panel/inquiry_process.h"

#include <memory>

#include "host/panel/applet_library.h"
#include "host/panel/applet_talk.h"
#include "host/panel/report.h"
#include "host/panel/standard_output.h"

namespace panel {
namespace {

LibraryReport Inquire(const AppletLibrary& library) {
  const AppletTalk talk(library);
  LibraryReport report;
  report.problem = QString::fromStdString(talk.GetProblem());
  for (const AppletAnswer& answer : talk.GetAnswers()) {
    report.applets.push_back(
        {QString::fromStdU16String(answer.name), QByteArray::fromStdString(answer.icon)});
  }
  return report;
}

}  // namespace

int RunInquiry(const std::string& applet) {
  const int output = TakeStandardOutput();
  std::string problem;
  const std::unique_ptr<AppletLibrary> library = AppletLibrary::Load(applet, problem);
  const LibraryReport report =
      library ? Inquire(*library) : LibraryReport{QString::fromStdString(problem), {}};
  const QByteArray bytes = ToBytes(report);
  return WriteAll(output, bytes.constData(), bytes.size()) ? 0 : 1;
}

}  // namespace panel

#include "host/cli/template_commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/cli/band_picture.h"
#include "host/cli/header_code.h"
#include "host/cli/output.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

namespace cli {
namespace {

using voicemath::CVoiceMathematics;
using voicemath::TemplateFileResult;

constexpr std::size_t kPictureColumns = 60;

std::string ExplainTemplateFile(TemplateFileResult result) {
  switch (result) {
    case TemplateFileResult::kNotCreated:
      return "it cannot be made";
    case TemplateFileResult::kNotOpened:
      return "it cannot be opened";
    case TemplateFileResult::kTorn:
      return "it is torn: it ends before its template does";
    case TemplateFileResult::kBadFormat:
      return "it is not a template file";
    default:
      return "it cannot be read or written to its end";
  }
}

void PrintPicture(std::span<const float> values) {
  for (const std::string& line : DrawBands(values, kPictureColumns, ChoosePictureStyle())) {
    PrintLine("  " + line);
  }
}

double SamplesToSeconds(std::uint32_t samples) {
  return static_cast<double>(samples) / voicemath::kSamplesPerSecond;
}

void PrintSummary(const CVoiceMathematics& mathematics) {
  const voicemath::Segment segment = mathematics.m_detected;
  PrintLine(fmt::format("Speech    {:.2f} s to {:.2f} s", SamplesToSeconds(segment.first),
                        SamplesToSeconds(segment.last + 1)));
  PrintLine(fmt::format("Template  {} frames, {:.2f} s", mathematics.m_frameCounts[0],
                        mathematics.GetTemplateDuration(0)));
  PrintPicture(mathematics.GetTemplate(0));
}

Json ToJson(int result, const CVoiceMathematics& mathematics) {
  const bool done = result == voicemath::kLearned;
  const voicemath::Segment segment = done ? mathematics.m_detected : voicemath::Segment{};
  return {{"result", result},
          {"segment", Json::array({segment.first, segment.last})},
          {"frames", mathematics.m_frameCounts[0]},
          {"seconds", mathematics.GetTemplateDuration(0)}};
}

using Operation = int (CVoiceMathematics::*)(std::int32_t);

void MakeTemplate(Session& session, Operation operation, const std::string& wave,
                  const std::string& st) {
  if (Session::AreSameFile(wave, st)) {
    throw CLI::ValidationError("st", "the template would overwrite the recording " + wave);
  }
  const platform::Platform platform = session.GetPlatform();
  CVoiceMathematics mathematics(platform.files, platform.ui);
  mathematics.m_wavePath = Session::ToSystemPath(wave);
  const int result = (mathematics.*operation)(0);
  if (session.GetOptions().json) {
    PrintJson(ToJson(result, mathematics));
  }
  if (result != voicemath::kLearned) {
    const int code = CheckHeader(mathematics, mathematics.m_wavePath);
    session.Fail(code == voicemath::kHeaderAccepted
                     ? fmt::format("{}: it cannot be read or rewritten", wave)
                     : fmt::format("{}: {}", wave, ExplainHeaderCode(code)));
    return;
  }
  const auto written =
      voicemath::WriteTemplateFile(platform.files, Session::ToSystemPath(st), mathematics);
  if (written != TemplateFileResult::kDone) {
    session.Fail(fmt::format("{}: {}", st, ExplainTemplateFile(written)));
    return;
  }
  if (!session.GetOptions().json) {
    PrintSummary(mathematics);
  }
}

/// Reads a template into `slot`; tells what is wrong where that fails.
bool Load(Session& session, CVoiceMathematics& mathematics, const std::string& st,
          std::size_t slot) {
  mathematics.m_loadSlot = static_cast<std::int32_t>(slot);
  const auto read = voicemath::ReadTemplateFile(session.GetPlatform().files,
                                                Session::ToSystemPath(st), mathematics);
  if (read != TemplateFileResult::kDone) {
    session.Fail(fmt::format("{}: {}", st, ExplainTemplateFile(read)));
  }
  return read == TemplateFileResult::kDone;
}

void ShowTemplate(Session& session, const std::string& st) {
  const platform::Platform platform = session.GetPlatform();
  CVoiceMathematics mathematics(platform.files, platform.ui);
  if (!Load(session, mathematics, st, 0)) {
    return;
  }
  const auto values = mathematics.GetTemplate(0);
  if (!session.GetOptions().json) {
    PrintLine(fmt::format("{}: {} frames, {:.2f} s", st, mathematics.m_frameCounts[0],
                          mathematics.GetTemplateDuration(0)));
    PrintPicture(values);
    return;
  }
  Json numbers = Json::array();
  for (const float value : values) {
    numbers.push_back(value);
  }
  PrintJson({{"elementCount", values.size()},
             {"frames", mathematics.m_frameCounts[0]},
             {"values", std::move(numbers)}});
}

void PrintDistances(const CVoiceMathematics& mathematics, const std::vector<std::string>& files) {
  const auto count = static_cast<std::int32_t>(files.size());
  for (std::int32_t i = 0; i < count; ++i) {
    std::string line;
    for (std::int32_t j = 0; j < count; ++j) {
      line += fmt::format("{:8.4f}", mathematics.CompareTemplates(i, j));
    }
    const auto index = static_cast<std::size_t>(i);
    PrintLine(fmt::format("{}   accepts below {:.4f}  {}", line, mathematics.m_thresholds[index],
                          files[index]));
  }
}

Json DistancesToJson(const CVoiceMathematics& mathematics, std::int32_t count) {
  Json distances = Json::array();
  Json thresholds = Json::array();
  for (std::int32_t i = 0; i < count; ++i) {
    Json row = Json::array();
    for (std::int32_t j = 0; j < count; ++j) {
      row.push_back(mathematics.CompareTemplates(i, j));
    }
    distances.push_back(std::move(row));
    thresholds.push_back(mathematics.m_thresholds[static_cast<std::size_t>(i)]);
  }
  return {{"distances", std::move(distances)}, {"thresholds", std::move(thresholds)}};
}

void Compare(Session& session, const std::vector<std::string>& files) {
  if (files.size() > CVoiceMathematics::kStoredSlots) {
    throw CLI::ValidationError("st", "more than 100 templates");
  }
  const platform::Platform platform = session.GetPlatform();
  const auto mathematics = std::make_unique<CVoiceMathematics>(platform.files, platform.ui);
  for (std::size_t slot = 0; slot < files.size(); ++slot) {
    if (!Load(session, *mathematics, files[slot], slot)) {
      return;
    }
  }
  mathematics->m_count = static_cast<std::int32_t>(files.size());
  const std::int32_t count = mathematics->ComputeThresholds();
  if (session.GetOptions().json) {
    PrintJson(DistancesToJson(*mathematics, count));
  } else {
    PrintDistances(*mathematics, files);
  }
}

struct TemplateArguments {
  std::string wave;
  std::string st;
  std::vector<std::string> templates;
};

void AddMaker(CLI::App& group, Session& session,
              const std::shared_ptr<TemplateArguments>& arguments, const char* name,
              const char* description, Operation operation) {
  CLI::App* command = group.add_subcommand(name, description);
  command->add_option("wave", arguments->wave, "The recording")->required();
  command->add_option("st", arguments->st, "The template file to write")->required();
  command->callback([&session, arguments, operation] {
    MakeTemplate(session, operation, arguments->wave, arguments->st);
  });
}

}  // namespace

void AddTemplateCommands(CLI::App& app, Session& session) {
  CLI::App* group = app.add_subcommand("template", "Make, look at and compare templates");
  group->require_subcommand(1);
  const auto arguments = std::make_shared<TemplateArguments>();

  AddMaker(*group, session, arguments, "learn",
           "Find the speech in a recording, trim the file to it, and make its template",
           &CVoiceMathematics::LearnFile);
  AddMaker(*group, session, arguments, "process", "Make the template of a whole recording",
           &CVoiceMathematics::ProcessFile);

  CLI::App* show = group->add_subcommand("show", "Draw a template: its five bands over time");
  show->add_option("st", arguments->st, "The template file")->required();
  show->callback([&session, arguments] { ShowTemplate(session, arguments->st); });

  CLI::App* compare =
      group->add_subcommand("compare", "Tell how alike templates are (0 same, at most 2)");
  compare->add_option("st", arguments->templates, "The template files, at most 100")->required();
  compare->callback([&session, arguments] { Compare(session, arguments->templates); });
}

}  // namespace cli

#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/cli/band_picture.h"
#include "host/cli/file_arguments.h"
#include "host/cli/output.h"
#include "host/session/explanations.h"
#include "voicemath/template_file.h"
#include "voicemath/voice_mathematics.h"

// The commands on template files. Values that no template can have are named, and nothing is
// computed with those that are no numbers.
namespace cli {
namespace {

using voicemath::CVoiceMathematics;
using voicemath::TemplateFileError;

/// Returns what is wrong with a template file, in words that go on after its name and a colon.
std::string ExplainTemplateFile(Session& session, const FileArgument& file,
                                TemplateFileError error) {
  switch (error) {
    case TemplateFileError::kNotOpened:
      return session::ExplainUnread(session.GetFiles(), file.GetPath());
    case TemplateFileError::kTorn:
      return "it is torn: it ends before its template does";
    case TemplateFileError::kBadFormat:
      return "it is not a template file";
    default:
      return "it cannot be read to its end";
  }
}

/// Reads a template into `slot`. Returns what messages call its file. The error is a sentence.
platform::Result<std::string, std::string> Load(Session& session, CVoiceMathematics& mathematics,
                                                const std::string& st, std::size_t slot) {
  const auto file = FileArgument::ForReading(st);
  if (!file) {
    return platform::Failure(file.error());
  }
  mathematics.m_loadSlot = static_cast<std::int32_t>(slot);
  const auto read =
      voicemath::ReadTemplateFile(session.GetPlatform().files, file->GetPath(), mathematics);
  if (!read) {
    return platform::Failure(
        fmt::format("{}: {}", file->GetName(), ExplainTemplateFile(session, *file, read.error())));
  }
  return file->GetName();
}

/// Returns a sentence about the values for which `isOdd` holds. Returns an empty text if there is
/// none.
template <typename Predicate>
std::string NameOdd(std::span<const float> values, const char* what, Predicate isOdd) {
  const auto first = std::ranges::find_if(values, isOdd);
  if (first == values.end()) {
    return {};
  }
  const auto at = static_cast<std::size_t>(first - values.begin());
  const auto more = std::count_if(first, values.end(), isOdd) - 1;
  return fmt::format(
      "the value of frame {}, band {} is {} ({}){}", at / voicemath::kBandCount + 1,
      at % voicemath::kBandCount + 1, what, *first,
      more > 0 ? fmt::format(", and so {} {} more", more == 1 ? "is" : "are", more) : "");
}

/// Names values that no template has. Returns false, and the command has failed, if some are no
/// numbers: whatever is calculated with them is none either.
bool CheckValues(Session& session, const std::string& st, std::span<const float> values) {
  const std::string negative =
      NameOdd(values, "negative", [](float value) { return std::isfinite(value) && value < 0.0F; });
  if (!negative.empty()) {
    PrintErrorLine(fmt::format("voxtrel: warning: {}: {}", st, negative));
  }
  const std::string none =
      NameOdd(values, "no finite number", [](float value) { return !std::isfinite(value); });
  if (!none.empty()) {
    session.Fail(fmt::format("{}: {}", st, none));
  }
  return none.empty();
}

void ShowTemplate(Session& session, const std::string& st) {
  const platform::Platform platform = session.GetPlatform();
  CVoiceMathematics mathematics(platform.files, platform.ui);
  const auto name = Load(session, mathematics, st, 0);
  if (!name) {
    session.Fail(name.error());
    return;
  }
  const auto values = mathematics.GetTemplate(0);
  static_cast<void>(CheckValues(session, *name, values));  // Shown all the same.
  if (!session.GetOptions().json) {
    PrintLine(fmt::format("{}: {}, {:.2f} s", *name, CountFrames(mathematics.m_frameCounts[0]),
                          mathematics.GetTemplateDuration(0)));
    PrintPicture(values);
    return;
  }
  Json numbers = Json::array();
  for (const float value : values) {
    numbers.push_back(value);
  }
  session.SetJson({{"elementCount", values.size()},
                   {"frames", mathematics.m_frameCounts[0]},
                   {"values", std::move(numbers)}});
}

void PrintDistances(const CVoiceMathematics& mathematics, const std::vector<std::string>& names) {
  const auto count = static_cast<std::int32_t>(names.size());
  for (std::int32_t i = 0; i < count; ++i) {
    // In both directions: for two templates of one length the order counts.
    std::string line;
    for (std::int32_t j = 0; j < count; ++j) {
      line += fmt::format("{:8.4f}", mathematics.CompareTemplates(i, j));
    }
    const auto index = static_cast<std::size_t>(i);
    PrintLine(fmt::format("{}   accepts below {:.4f}  {}", line, mathematics.m_thresholds[index],
                          names[index]));
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

// All templates are loaded into the slots in which the dialer compares them. So the distances, and
// the acceptance distances next to them, are those that count for a spoken name.
void Compare(Session& session, const std::vector<std::string>& files) {
  if (files.size() > CVoiceMathematics::kStoredSlots) {
    throw CLI::ValidationError(
        "st", fmt::format("more than {} templates", CVoiceMathematics::kStoredSlots));
  }
  const platform::Platform platform = session.GetPlatform();
  const auto mathematics = std::make_unique<CVoiceMathematics>(platform.files, platform.ui);
  if (std::ranges::count(files, kStream) > 1) {
    throw CLI::ValidationError("st", "standard input holds one template, so - is given once");
  }
  bool areNumbers = true;
  std::vector<std::string> names;
  for (std::size_t slot = 0; slot < files.size(); ++slot) {
    const auto name = Load(session, *mathematics, files[slot], slot);
    if (!name) {
      session.Fail(name.error());
      return;
    }
    areNumbers &= CheckValues(session, *name, mathematics->GetTemplate(slot));
    names.push_back(*name);
  }
  if (!areNumbers) {
    return;
  }
  // The count belongs to whoever loads a base, and the thresholds are computed for so many.
  mathematics->m_count = static_cast<std::int32_t>(files.size());
  const std::int32_t count = mathematics->ComputeThresholds();
  if (session.GetOptions().json) {
    session.SetJson(DistancesToJson(*mathematics, count));
  } else {
    PrintDistances(*mathematics, names);
  }
}

}  // namespace

void AddTemplateCommands(CLI::App& app, Session& session) {
  CLI::App* group = app.add_subcommand("template", "Make, look at and compare templates");
  group->require_subcommand(1);
  AddTemplateMakers(*group, session);
  const auto templates = std::make_shared<std::vector<std::string>>();
  const auto st = std::make_shared<std::string>();

  CLI::App* show = group->add_subcommand("show", "Draw a template: its five bands over time");
  show->add_option("st", *st, "The template file; - for standard input")->required();
  show->callback([&session, st] { ShowTemplate(session, *st); });

  CLI::App* compare =
      group->add_subcommand("compare", "Say how alike templates are (0: the same, at most 2)");
  compare
      ->add_option("st", *templates,
                   fmt::format("The template files, at most {}; - for standard input",
                               CVoiceMathematics::kStoredSlots))
      ->required();
  compare->callback([&session, templates] { Compare(session, *templates); });
}

}  // namespace cli

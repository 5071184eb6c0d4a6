#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "dialer/evaluation.h"
#include "host/cli/output.h"
#include "host/dial/commands.h"

// `dial --evaluate`: how often the recognizer is right with the voices of a folder. It needs
// neither tags nor contacts. All processors read and ask the recordings, since both take long.
namespace dial {
namespace {

using dialer::EvaluationFigures;

constexpr const char* kTakeName = "LABEL_SPEAKER_TAKE.wav, in which TAKE is a number";

/// Does `work` for 0 to `count` - 1, on all processors. Each thread takes the next number that none
/// has taken: the rounds take different times, so equal shares would leave some processors idle.
void ForEach(std::size_t count, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  const auto run = [&] {
    for (std::size_t i = next++; i < count; i = next++) {
      work(i);
    }
  };
  std::vector<std::jthread> threads(std::max(1U, std::thread::hardware_concurrency()) - 1);
  std::ranges::generate(threads, [&] { return std::jthread(run); });
  run();
}

/// A recording that is to be read.
struct TakeFile {
  std::string path;
  dialer::TakeName name;
  std::shared_ptr<const dialer::Utterance> utterance{};
  std::string failure{};  ///< Why there is none.
};

/// Returns the recordings of a folder in the order of their names. Other wave files are named in a
/// warning. Reports it if the folder cannot be read.
std::vector<TakeFile> FindTakes(cli::Session& session, const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  if (error) {
    session.Fail(fmt::format("{}: {}", folder, error.message()));
    return {};
  }
  // A folder gives them in an order of its own. Sorted, the warnings are the same each time.
  std::ranges::sort(names);
  std::vector<TakeFile> takes;
  for (const std::string& name : names) {
    if (auto parsed = dialer::ParseTakeName(name)) {
      takes.push_back({(std::filesystem::path(folder) / name).string(), std::move(*parsed)});
    } else if (dialer::IsWaveName(name)) {
      session.Warn(fmt::format("{}: not used: it is not called {}", name, kTakeName));
    }
  }
  if (takes.empty()) {
    session.Fail(fmt::format("{} has no recordings {}", folder, kTakeName));
  }
  return takes;
}

using Speakers = std::map<std::string, dialer::SpokenLabels>;

/// Reads and prepares all of them. A file that cannot be read is named in a warning.
Speakers Prepare(cli::Session& session, std::vector<TakeFile> takes, dialer::Steps steps) {
  platform::FileSystem& files = session.GetFiles();
  ForEach(takes.size(), [&takes, &files, steps](std::size_t i) {
    TakeFile& take = takes[i];
    const auto samples = ReadTake(files, cli::Session::ToSystemPath(take.path));
    if (samples) {
      take.utterance = std::make_shared<dialer::Utterance>(*samples, steps);
    } else {
      take.failure = samples.error();
    }
  });
  Speakers speakers;
  for (TakeFile& take : takes) {
    if (take.utterance && !speakers[take.name.speaker][take.name.label]
                               .try_emplace(take.name.take, std::move(take.utterance))
                               .second) {
      take.failure = "there is another take with this number";
    }
    if (!take.failure.empty()) {
      session.Warn(fmt::format("{}: not used: {}", take.path, take.failure));
    }
  }
  return speakers;
}

struct SpeakerFigures {
  std::string speaker;
  EvaluationFigures figures;
};

/// All rounds of all speakers at once, so that no processor waits for the last speaker.
std::vector<SpeakerFigures> Measure(Speakers speakers, std::size_t taught, dialer::Steps steps) {
  struct Round {
    std::size_t speaker;
    std::size_t round;
    EvaluationFigures figures{};
  };
  std::vector<SpeakerFigures> measured;
  std::vector<dialer::Evaluation> evaluations;
  std::vector<Round> rounds;
  for (auto& [speaker, labels] : speakers) {
    evaluations.emplace_back(std::move(labels), taught, steps);
    for (std::size_t round = 0; round < evaluations.back().CountRounds(); ++round) {
      rounds.push_back({measured.size(), round});
    }
    measured.push_back({speaker, {}});
  }
  ForEach(rounds.size(), [&](std::size_t i) {
    rounds[i].figures = evaluations[rounds[i].speaker].RunRound(rounds[i].round);
  });
  for (const Round& round : rounds) {
    measured[round.speaker].figures += round.figures;
  }
  return measured;
}

cli::Json FigureToJson(const dialer::Count& count) {
  const dialer::Share share = dialer::ToShare(count);
  return {{"rate", share.rate}, {"low", share.low}, {"high", share.high}};
}

void AddFigures(const EvaluationFigures& figures, cli::Json& json) {
  json["asked"] = figures.forced.whole;
  json["forced"] = FigureToJson(figures.forced);
  json["sure"] = FigureToJson(figures.sure);
  json["wrong"] = FigureToJson(figures.wrong);
  json["unknownSure"] = FigureToJson(figures.unknownSure);
}

void SetJson(cli::Session& session, const std::vector<SpeakerFigures>& measured,
             const EvaluationFigures& all, int taught) {
  cli::Json json{{"takes", taught}, {"speakers", cli::Json::array()}};
  for (const SpeakerFigures& one : measured) {
    cli::Json speaker{{"speaker", one.speaker}};
    AddFigures(one.figures, speaker);
    json["speakers"].push_back(std::move(speaker));
  }
  json["all"] = cli::Json::object();
  AddFigures(all, json["all"]);
  session.SetJson(std::move(json));
}

std::string ToCell(const dialer::Count& count) {
  if (count.whole == 0) {
    return fmt::format("{:>21}", "-");
  }
  const dialer::Share share = dialer::ToShare(count);
  return fmt::format("{:6.1f} ({:5.1f} - {:5.1f})", 100 * share.rate, 100 * share.low,
                     100 * share.high);
}

void PrintRow(const std::string& name, const EvaluationFigures& figures) {
  cli::PrintLine(fmt::format("{:16} {:6}  {}  {}  {}  {}", name, figures.forced.whole,
                             ToCell(figures.forced), ToCell(figures.sure), ToCell(figures.wrong),
                             ToCell(figures.unknownSure)));
}

}  // namespace

void Evaluate(cli::Session& session, const cli::DialOptions& options) {
  const auto steps = options.quick ? dialer::Steps::kTemplatesOnly : dialer::Steps::kBoth;
  std::vector<TakeFile> takes = FindTakes(session, options.evaluate);
  if (takes.empty()) {
    return;
  }
  const auto measured = Measure(Prepare(session, std::move(takes), steps),
                                static_cast<std::size_t>(options.takes), steps);
  EvaluationFigures all;
  for (const SpeakerFigures& one : measured) {
    all += one.figures;
    if (one.figures.forced.whole == 0) {
      session.Warn(fmt::format("{}: not asked: no label has more than {} take{}", one.speaker,
                               options.takes, options.takes == 1 ? "" : "s"));
    }
  }
  if (all.forced.whole == 0) {
    session.Fail("nothing was asked");
    return;
  }
  if (session.GetOptions().json) {
    SetJson(session, measured, all, options.takes);
    return;
  }
  cli::PrintLine(
      fmt::format("In percent, with limits of 95 %; {} taught of each label.",
                  options.takes == 1 ? "one take is" : fmt::format("{} takes are", options.takes)));
  cli::PrintLine(fmt::format("{:16} {:>6}  {:>21}  {:>21}  {:>21}  {:>21}", "speaker", "asked",
                             "right if forced", "sure", "wrong among sure", "untaught but sure"));
  for (const SpeakerFigures& one : measured) {
    PrintRow(one.speaker, one.figures);
  }
  PrintRow("all", all);
}

}  // namespace dial

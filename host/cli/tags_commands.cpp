#include "host/cli/commands.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "audio/wave_header.h"
#include "backends/text/utf.h"
#include "host/cli/contact_choice.h"
#include "host/cli/output.h"
#include "host/cli/tag_output.h"
#include "host/session/explanations.h"
#include "host/session/page_run.h"
#include "host/session/quality_words.h"
#include "host/session/tag_reading.h"
#include "language/texts.h"
#include "resources/dialogs.h"
#include "storage/device_paths.h"
#include "storage/tag_store.h"
#include "voicemath/recording_review.h"

// The commands about tags. Those that only read use the reader of the tags, and make nothing. Those
// that change something open the real page in a sheet that nobody sees, and press its buttons.
namespace cli {
namespace {

using resources::kRecordButtonId;
using resources::kTagListId;
using voicemath::Verdict;

/// Returns the tag of a line of the page.
tags::ListedTag ReadTagOfLine(Session& session, const session::PageRun& run, std::int32_t index) {
  tags::ListedTag tag;
  tag.name = run.page.GetTagOfLine(index);
  tag.text = run.dialog.GetItemText(kTagListId, index);
  const storage::TagStore store(session.GetFiles(), session.GetRegistry());
  if (auto entry = store.ReadEntry(tag.name)) {
    tag.entry = std::move(*entry);
  } else {
    tag.error = entry.error();
  }
  return tag;
}

void PrintTag(const tags::ListedTag& tag) {
  std::string remark;
  if (tag.isStale) {
    remark = "  (its contact does not exist any more)";
    // The text is the bare name if the contact is not known. The kind of the number then helps a
    // little.
  } else if (tag.text == tag.name && !tag.entry.phoneType.empty()) {
    remark = fmt::format("  ({})", text::ToUtf8(tag.entry.phoneType));
  }
  PrintLine(fmt::format("{:>11}  {}{}", text::ToUtf8(tag.name), text::ToUtf8(tag.text), remark));
}

void ListTags(Session& session) {
  if (!session.OpenForReading()) {
    return;
  }
  const auto tags = session::ReadTags(session);
  if (!tags) {
    session.Fail(tags.error());
    return;
  }
  if (session.GetOptions().json) {
    const std::vector<maintenance::JudgedTag> judged = session::ToJudged(*tags);
    const auto qualities = maintenance::JudgeTags(session.GetPlatform(), judged);
    Json list = Json::array();
    for (std::size_t i = 0; i < tags->size(); ++i) {
      list.push_back(ToJson(session, (*tags)[i]));
      list.back()["quality"] = QualityToJson(qualities[i], judged);
      if (qualities[i].hasUnreadFile) {
        session::ReportUnjudged(session, (*tags)[i]);
      }
    }
    session.SetJson(list);
    return;
  }
  std::ranges::for_each(*tags, PrintTag);
  PrintLine(text::ToUtf8(
      language::CountLabel(session::LoadTexts(session), static_cast<std::int32_t>(tags->size()))));
}

/// Returns whether the file that stands for the microphone can be heard, before anybody is asked to
/// speak. Reports it if not. A real microphone reports that itself.
bool CanHear(Session& session) {
  const std::string& microphone = session.GetOptions().machine.microphone;
  if (microphone.empty()) {
    return true;
  }
  const auto opened = session.GetPlatform().waveIn.Open(
      audio::MonoPcm(audio::kRecordingBits, audio::kRecordingRate));
  if (!opened) {
    session.Fail(
        opened.error() == platform::WaveResult::kNoDevice
            ? microphone + ": " +
                  session::ExplainUnread(session.GetFiles(), Session::ToSystemPath(microphone))
            : microphone + " is no wave file of 11,025 Hz, mono, 16 bit");
  }
  return opened.has_value();
}

/// Judges each recording of a page while it is whole. A long name is cut shorter than it was said.
/// That is no fault of the user, who is not warned of it as of a recording that began too late.
class WholeTake {
 public:
  WholeTake(Session& session, tags::Page_one& page) : m_page(page) {
    m_page.OnRecorded([this, &session](const std::u16string& path) {
      const platform::Platform platform = session.GetPlatform();
      const auto mathematics =
          std::make_unique<voicemath::CVoiceMathematics>(platform.files, platform.ui);
      mathematics->m_wavePath = path;
      m_quality = voicemath::JudgeRecording(*mathematics);
    });
  }
  WholeTake(const WholeTake&) = delete;
  WholeTake& operator=(const WholeTake&) = delete;
  ~WholeTake() { m_page.OnRecorded(nullptr); }

  /// Takes the verdicts out that the recording had not when it was whole.
  void Correct(maintenance::TagQuality& quality) const {
    if (!m_quality || !quality.take) {
      return;
    }
    std::erase_if(quality.take->verdicts, [&](Verdict verdict) {
      const bool isOfCutting = verdict == Verdict::kCutStart || verdict == Verdict::kCutEnd;
      return isOfCutting && std::ranges::count(m_quality->verdicts, verdict) == 0;
    });
  }

 private:
  tags::Page_one& m_page;
  platform::Result<voicemath::TakeQuality, voicemath::ReviewError> m_quality =
      platform::Failure(voicemath::ReviewError::kNotOpened);
};

/// Says what is wrong with a tag that has just been learned, and prints it as `tags list` does.
void PrintLearned(Session& session, session::PageRun& run, std::int32_t index,
                  const WholeTake& take) {
  const std::int32_t count = run.dialog.GetItemCount(kTagListId);
  std::vector<tags::ListedTag> tags;
  tags.reserve(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
    tags.push_back(ReadTagOfLine(session, run, i));
  }
  const std::vector<maintenance::JudgedTag> judged = session::ToJudged(tags);
  const auto place = static_cast<std::size_t>(index);
  auto quality = maintenance::JudgeTag(session.GetPlatform(), judged, place);
  take.Correct(quality);
  const std::vector<std::string> warnings = session::DescribeAll(quality, tags);
  for (const std::string& warning : warnings) {
    PrintErrorLine("voxtrel: warning: the recording: " + warning);
  }
  if (!session.GetOptions().json) {
    PrintLine(fmt::format("Learned: {}", text::ToUtf8(tags[place].text)));
    return;
  }
  Json json = ToJson(session, tags[place]);
  json["quality"] = QualityToJson(quality, judged);
  if (!warnings.empty()) {
    json["warnings"] = warnings;
  }
  session.SetJson(json);
}

// The command line has no rules of its own for learning: it chooses in the page's boxes, presses
// the page's button, and looks whether the list has a new line. Everything that the page refuses is
// so refused here.
void Learn(Session& session, const std::string& contact, const std::string& kind) {
  session::RunPage(session, session::Contacts::kNeeded, [&](session::PageRun& run) {
    if (!ChooseContact(session, run, contact) ||
        (!kind.empty() && !ChooseNumber(session, run, kind)) || !CanHear(session)) {
      return;
    }
    if (!session.GetOptions().json && !session.HearsFile()) {
      PrintErrorLine("Say the name now: three seconds are recorded, then you hear it.");
    }
    const int before = run.dialog.GetItemCount(kTagListId);
    const WholeTake take(session, run.page);
    {
      const session::QuickScope quick(session.GetClock(),
                                      session.HearsFile() && session.PlaysIntoFile());
      // This returns when the page is done: recorded, stored, listed and played.
      run.dialog.Press(kRecordButtonId);
    }
    // The page answers nothing. Whether it has learned a name shows in its list.
    if (run.dialog.GetItemCount(kTagListId) == before) {
      if (session.GetOptions().json && run.page.GetRecordCode() == audio::kDeviceLost) {
        session.SetJson({{"quality", QualityToJson(session::InterruptedTake())}});
      }
      const std::string reason = session::ExplainNoTag(session, run.page);
      session.Fail("no tag was learned" + (reason.empty() ? "" : ": " + reason));
      return;
    }
    PrintLearned(session, run, before, take);
    const int code = run.page.GetPlayCode();
    if (!session.GetOptions().json && code != audio::kPlayed) {
      PrintErrorLine(
          fmt::format("The recording was not played: {}", session::ExplainPlayCode(session, code)));
    }
  });
}

std::string ExplainNoSuchTag(const std::string& name) {
  return fmt::format("there is no tag {}; `voxtrel tags list` shows them", name);
}

/// Selects the tag of that name. Reports it if there is none.
bool SelectTag(Session& session, session::PageRun& run, const std::string& name) {
  if (const auto line = session::FindLine(run, text::FromUtf8(name))) {
    run.dialog.Choose(kTagListId, *line);
    return true;
  }
  session.Fail(session::ListsAllTags(session, run)
                   ? ExplainNoSuchTag(name)
                   : fmt::format("tag {} could not be listed, and others could not either; "
                                 "`voxtrel check` says what is wrong with them",
                                 name));
  return false;
}

void PrintResult(Session& session, int result) {
  if (session.GetOptions().json) {
    session.SetJson({{"result", result}});
  }
}

void PlayTag(Session& session, const std::string& name) {
  // The page would make the root folder, although it is only asked for a recording.
  if (!session.RequireRoot()) {
    return;
  }
  if (!session.HasRootFolder()) {
    session.Fail(ExplainNoSuchTag(name));
    return;
  }
  session::RunPage(session, session::Contacts::kOptional, [&](session::PageRun& run) {
    if (!SelectTag(session, run, name)) {
      return;
    }
    const session::QuickScope quick(session.GetClock(), session.PlaysIntoFile());
    run.dialog.Press(resources::kPlayButtonId);
    const int code = run.page.GetPlayCode();
    PrintResult(session, code);
    if (code != audio::kPlayed) {
      session.Fail(
          fmt::format("tag {} was not played: {}", name, session::ExplainPlayCode(session, code)));
    }
  });
}

/// Presses a button that deletes, and reports what became of it.
void PressDelete(Session& session, session::PageRun& run, int button, const char* failure) {
  const session::DeletePress press = session::PressDelete(session, run, button);
  PrintResult(session, press == session::DeletePress::kDone ? 0 : 1);
  if (press != session::DeletePress::kDone) {
    session.Fail(press == session::DeletePress::kNothing ? failure
                                                         : "some files of deleted tags are left");
  }
}

auto ReadEntry(Session& session, const std::string& name) {
  return storage::TagStore(session.GetFiles(), session.GetRegistry())
      .ReadEntry(text::FromUtf8(name));
}

void Delete(Session& session, const std::string& name) {
  if (!session.OpenForChanging()) {
    return;
  }
  // Asked before the page opens, since opening may clean up the very tag.
  const bool wasThere = ReadEntry(session, name).has_value();
  session::RunPage(session, session::Contacts::kOptional, [&](session::PageRun& run) {
    const auto entry = ReadEntry(session, name);
    if (wasThere && !entry && entry.error() == platform::RegistryError::kNotFound) {
      // The page that opened moved it to the trash, since its contact has gone: it is deleted.
      PrintResult(session, 0);
    } else if (SelectTag(session, run, name)) {
      PressDelete(session, run, resources::kDeleteButtonId, "the tag was not deleted");
    }
  });
}

void DeleteAll(Session& session) {
  session::RunPage(session, session::Contacts::kOptional, [&](session::PageRun& run) {
    if (run.dialog.GetItemCount(kTagListId) == 0 && session::ListsAllTags(session, run)) {
      PrintResult(session, 0);
      return;
    }
    PressDelete(session, run, resources::kDeleteAllButtonId, "the tags were not deleted");
  });
}

struct TagArguments {
  std::string contact;
  std::string kind;
  std::string name;
};

void AddName(CLI::App& command, TagArguments& arguments) {
  command.add_option("name", arguments.name, "The tag's name, as in the list")->required();
}

}  // namespace

void AddTagsCommands(CLI::App& app, Session& session) {
  CLI::App* group =
      app.add_subcommand("tags", "Learn, list, test, play, delete and restore voice tags");
  group->require_subcommand(1);
  const auto arguments = std::make_shared<TagArguments>();

  CLI::App* learn = group->add_subcommand("learn", "Record a name for a contact's number");
  learn
      ->add_option("--contact", arguments->contact,
                   "Name, identifier, or number in `contacts list`")
      ->required();
  learn->add_option("--number", arguments->kind,
                    "Kind of the number, such as Mobile or Home (default: the first in the list)");
  learn->callback([&session, arguments] { Learn(session, arguments->contact, arguments->kind); });

  AddTagsTestCommand(*group, session);
  AddTrashCommands(*group, session);
  group->add_subcommand("list", "List the learned tags")->callback([&session] {
    ListTags(session);
  });

  CLI::App* play = group->add_subcommand("play", "Play a tag's recording");
  AddName(*play, *arguments);
  play->callback([&session, arguments] { PlayTag(session, arguments->name); });

  CLI::App* remove = group->add_subcommand("delete", "Delete a tag, after asking");
  AddName(*remove, *arguments);
  remove->callback([&session, arguments] { Delete(session, arguments->name); });

  group->add_subcommand("delete-all", "Delete all tags, after asking")->callback([&session] {
    DeleteAll(session);
  });
}

}  // namespace cli

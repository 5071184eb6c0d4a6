#include "host/home/store_work.h"

#include <QMetaObject>
#include <system_error>
#include <utility>

#include "audio/wave_device.h"
#include "backends/sqlite/sqlite_registry.h"
#include "backends/text/utf.h"
#include "backends/vcard/contact_source.h"
#include "host/home/shelf_reading.h"
#include "host/home/trash_reading.h"
#include "host/session/explanations.h"
#include "resources/translations.h"
#include "resources/work_strings.h"
#include "storage/device_paths.h"

namespace home {
namespace {

namespace fs = std::filesystem;

/// Returns the files and folders that change if tags or contacts do. The desktop's address books
/// have none: they are read again with the next load.
std::vector<fs::path> FindWatched(const machine::Options& options, session::Session& session) {
  const fs::path registry = session.GetRoot() / sqlite::kDatabaseName;
  fs::path log = registry;
  log += "-wal";
  std::vector<vcard::Remark> ignored;
  const auto choice = vcard::RecallChoice(session.GetRegistry(), ignored);
  fs::path contacts = registry.parent_path() / "contacts.vcf";
  if (!options.contacts.empty()) {
    contacts = options.contacts;
  } else if (choice && *choice && !(*choice)->path.empty()) {
    contacts = text::ToHostName((*choice)->path);
  }
  return {registry, log, contacts, session.ToHostPath(storage::kWaveFolder),
          session.ToHostPath(storage::kTemplateFolder)};
}

}  // namespace

StoreWork::StoreWork(const machine::Options& options) : m_options(options), m_tasks(options) {
  // The first loudspeaker of a process changes its environment, which another thread must not see.
  static_cast<void>(machine::Backends(options).GetWaveOut());
}

// The threads end after this, each after what it does now. A sound would keep the player's waiting.
StoreWork::~StoreWork() { StopPlaying(); }

StoreWork::Seen StoreWork::LookAt(const fs::path& path) {
  std::error_code error;
  Seen seen{path, fs::last_write_time(path, error), 0};
  if (error) {
    seen.time = fs::file_time_type::min();
    return seen;
  }
  const auto size = fs::file_size(path, error);
  seen.size = error ? 0 : size;
  return seen;
}

void StoreWork::Answered(std::function<void()> answer) {
  QMetaObject::invokeMethod(&m_here, std::move(answer), Qt::QueuedConnection);
}

void StoreWork::Do(std::function<std::function<void()>()> task, bool isChange) {
  m_thread.Do([this, task = std::move(task), isChange] {
    std::function<void()> answer = task();
    // Also after a failure: a part of it may have been done.
    if (isChange) {
      ReadStore();
    }
    Answered(std::move(answer));
  });
}

// What is watched is looked at before it is read. So a change that comes meanwhile is noticed the
// next time.
void StoreWork::ReadStore() {
  Gathering gathering;
  session::Session session(m_options, gathering);
  std::vector<Seen> seen;
  if (session.OpenForReading()) {
    for (const fs::path& path : FindWatched(m_options, session)) {
      seen.push_back(LookAt(path));
    }
  }
  // Somebody who waits for a window wants to see the names. Later, a list that loses its verdicts
  // for a moment would only flicker.
  const auto showSoon = [this](const Shelf& names) {
    Answered([this, shelf = std::make_shared<const Shelf>(names)] {
      if (const Show show = m_show) {
        show(shelf);
      }
    });
  };
  const bool isFirst = !std::exchange(m_hasRead, true);
  auto shelf = std::make_shared<const Shelf>(
      ReadShelf(session, gathering, isFirst ? showSoon : std::function<void(const Shelf&)>()));
  Answered([this, shelf = std::move(shelf), seen = std::move(seen)] {
    m_seen = seen;
    if (const Show show = m_show) {
      show(shelf);
    }
  });
}

void StoreWork::Load() {
  // One that waits will find this change as well.
  if (m_isLoadWaiting.exchange(true)) {
    return;
  }
  m_thread.Do([this] {
    m_isLoadWaiting = false;
    ReadStore();
  });
}

void StoreWork::LoadIfChanged() {
  for (const Seen& seen : m_seen) {
    if (LookAt(seen.path) != seen) {
      Load();
      return;
    }
  }
}

void StoreWork::Play(const std::u16string& tag, Answer answer) {
  StopPlaying();
  m_playback = std::make_shared<Playback>(tag);
  m_player.Do([this, playback = m_playback, answer = std::move(answer)] {
    Gathering gathering;
    session::Session session(m_options, gathering);
    Outcome outcome;
    if (session.OpenForReading()) {
      const int code = playback->Run(session.GetPlatform());
      outcome.isDone = code == audio::kPlayed;
      if (!outcome.isDone) {
        outcome.message = ToSentence(session::ExplainPlayCode(session, code));
      }
    } else {
      outcome.message = gathering.GetText();
    }
    Answered([answer, outcome] { answer(outcome); });
  });
}

void StoreWork::StopPlaying() {
  if (m_playback) {
    m_playback->Stop();
  }
}

void StoreWork::Delete(const std::vector<std::u16string>& tags, DeletedAnswer answer) {
  Do(
      [this, tags, answer = std::move(answer)] {
        return
            [answer, deleted = m_tasks.Delete(tags)] { answer(deleted.outcome, deleted.trashed); };
      },
      true);
}

void StoreWork::ListTrash(TrashAnswer answer) {
  Do(
      [this, answer = std::move(answer)] {
        return [answer, trash = ReadTrash(m_options)] { answer(trash.outcome, trash.tags); };
      },
      false);
}

void StoreWork::Restore(const std::vector<std::u16string>& trashed, Answer answer) {
  Do(
      [this, trashed, answer = std::move(answer)] {
        return [answer, outcome = m_tasks.Restore(trashed)] { answer(outcome); };
      },
      true);
}

void StoreWork::Compare(const Lesson& lesson, ComparedAnswer answer) {
  Do(
      [this, lesson, answer = std::move(answer)] {
        return [answer, alike = FindAlike(m_options, lesson)] { answer(alike); };
      },
      false);
}

void StoreWork::Teach(const Lesson& lesson, TaughtAnswer answer) {
  Do(
      [this, lesson, answer = std::move(answer)] {
        return [answer, taught = m_tasks.Teach(lesson)] {
          answer(taught.outcome, taught.tag, taught.trashed);
        };
      },
      true);
}

}  // namespace home

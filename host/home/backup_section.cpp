#include "host/home/backup_section.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardPaths>
#include <algorithm>
#include <array>

#include "host/home/gathering.h"
#include "host/home/say.h"
#include "resources/setup_strings.h"

namespace home {
namespace {

using storage::RestoreFate;

session::NamedFile ToFile(const QString& path) {
  const std::string name = QFile::encodeName(path).toStdString();
  return {name, name};
}

QString ProposeFile() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QDir(folder).filePath(
      Say(resources::kBackupName).arg(QDate::currentDate().toString(Qt::ISODate)));
}

/// Returns the path with the end by which the dialog finds a backup again, unless the user wrote
/// another one. A file that is there was not shown to the user, and stays.
QString WithEnd(const QString& path) {
  const QString whole = path + QStringLiteral(".tar");
  return QFileInfo(path).suffix().isEmpty() && !QFileInfo::exists(whole) ? whole : path;
}

/// Returns one of two texts, since languages differ in what follows a number.
QString Count(std::ptrdiff_t count, std::u16string_view one, std::u16string_view many) {
  return count == 1 ? Say(one) : Say(many).arg(count);
}

bool HasDifferences(const session::Differences& differences) {
  return !differences.tags.empty() || differences.connection || differences.languageFile;
}

QString Describe(const session::RestoredBackup& backup) {
  const auto count = [&tags = backup.outcome.tags](std::initializer_list<RestoreFate> fates) {
    return std::ranges::count_if(
        tags, [&](RestoreFate fate) { return std::ranges::find(fates, fate) != fates.end(); });
  };
  const auto back = count({RestoreFate::kRestored, RestoreFate::kReplaced});
  const auto kept = count({RestoreFate::kKept});
  const auto leftOut = count({RestoreFate::kContactElsewhere, RestoreFate::kTooMany,
                              RestoreFate::kInUse, RestoreFate::kFull, RestoreFate::kFailed});
  QStringList sentences;
  if (back > 0) {
    sentences.append(Count(back, resources::kRestoredOne, resources::kRestoredMany));
  }
  if (kept > 0) {
    sentences.append(Count(kept, resources::kKeptOne, resources::kKeptMany));
  }
  if (leftOut > 0) {
    sentences.append(Count(leftOut, resources::kLeftOutOne, resources::kLeftOutMany));
  }
  return sentences.isEmpty() ? Say(resources::kRestoredNothing) : sentences.join(u' ');
}

}  // namespace

BackupSection::BackupSection(const SetupTools& tools, Errands& errands, QWidget* parent)
    : SetupSection(resources::kBackup, parent), m_tools(tools), m_errands(errands) {
  AddText(Say(resources::kBackupAdvice));
  m_backUp = AddButton(resources::kMakeBackup, "backUp", [this] { BackUp(); });
  m_restore = AddButton(resources::kRestoreBackup, "restore", [this] { ChooseBackup(); });
  ShowButtons({m_backUp, m_restore});
  m_progress = new QProgressBar(this);
  // Nobody knows how long it takes, so the bar runs to and fro.
  m_progress->setRange(0, 0);
  m_progress->setTextVisible(false);
  m_progress->setAccessibleName(Say(resources::kBackup));
  m_progress->hide();
  AddControl(m_progress);
  m_news = AddNews();
  m_news->setObjectName(QStringLiteral("backupNews"));
}

void BackupSection::BackUp() {
  const QString chosen = m_tools.questions.saveFile(this, Say(resources::kMakeBackup).remove(u'&'),
                                                    Say(resources::kBackupFilter), ProposeFile());
  if (chosen.isEmpty()) {
    return;
  }
  const QString path = WithEnd(chosen);
  SetBusy(true);
  ShowNews(*m_news, Say(resources::kBackingUp));
  m_errands.Do(
      [&options = m_tools.options, file = ToFile(path)] {
        Gathering gathering;
        session::Session session(options, gathering);
        auto backup = session::MakeBackup(session, file);
        return Made{std::move(backup), gathering.GetText()};
      },
      [this, path](const Made& made) {
        SetBusy(false);
        if (!made.backup) {
          ShowNews(*m_news, qt::ToQString(made.message));
          return;
        }
        const QString file = QDir::toNativeSeparators(path);
        ShowNews(*m_news, made.backup->tagCount == 1
                              ? Say(resources::kBackedUpOne).arg(file)
                              : Say(resources::kBackedUpMany).arg(made.backup->tagCount).arg(file));
      });
}

void BackupSection::ChooseBackup() {
  const QString path = m_tools.questions.openFile(this, Say(resources::kRestoreBackup).remove(u'&'),
                                                  Say(resources::kBackupFilter));
  if (!path.isEmpty()) {
    Restore(QFile::encodeName(path).toStdString(), Replacing::kNotAsked);
  }
}

// First everything comes back that replaces nothing. Only if there is more, the user is asked.
void BackupSection::Restore(const std::string& path, Replacing replacing) {
  SetBusy(true);
  ShowNews(*m_news, Say(resources::kRestoring));
  m_errands.Do(
      [&options = m_tools.options, path, replacing] {
        Gathering gathering;
        session::Session session(options, gathering);
        Restored restored;
        restored.backup = session::RestoreBackup(
            session, {path, path}, [&restored, replacing](const session::Differences& found) {
              if (replacing == Replacing::kNotAsked) {
                restored.differences = found;
              }
              return replacing == Replacing::kAgreed;
            });
        restored.message = gathering.GetText();
        return restored;
      },
      [this, path](const Restored& restored) { ShowRestored(path, restored); });
}

void BackupSection::ShowRestored(const std::string& path, const Restored& restored) {
  SetBusy(false);
  if (!restored.backup) {
    ShowNews(*m_news, qt::ToQString(restored.message));
    return;
  }
  ShowNews(*m_news, Describe(*restored.backup));
  m_tools.work.Load();
  if (HasDifferences(restored.differences) && AgreesToReplace(restored.differences)) {
    Restore(path, Replacing::kAgreed);
  }
}

bool BackupSection::AgreesToReplace(const session::Differences& differences) {
  QStringList lines;
  if (!differences.tags.empty()) {
    lines.append(Count(static_cast<std::ptrdiff_t>(differences.tags.size()), resources::kReplaceTag,
                       resources::kReplaceTags));
    for (const std::u16string& tag : differences.tags) {
      lines.append(qt::WithNumbersInOrder(qt::ToQString(tag)));
    }
  }
  if (differences.connection || differences.languageFile) {
    lines.append(Say(resources::kReplaceSettings));
  }
  return m_tools.questions.agrees(this, lines.join(u'\n'), Say(resources::kReplace),
                                  Say(resources::kKeepMine));
}

void BackupSection::SetBusy(bool isBusy) {
  SetupSection::SetBusy({m_backUp, m_restore}, isBusy);
  m_progress->setVisible(isBusy);
}

}  // namespace home

#include "host/home/check_section.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "host/home/gathering.h"
#include "host/home/say.h"
#include "resources/setup_strings.h"

namespace home {
namespace {

using session::CheckedFinding;
using session::Repairing;

QString FromUtf8(const std::string& text) { return QString::fromStdString(text); }

bool CanBeRepaired(const CheckedFinding& found) {
  const auto problem = found.finding.problem;
  return !found.isRepaired &&
         (maintenance::IsRepairable(problem) || maintenance::IsOrphan(problem) ||
          problem == maintenance::StoreProblem::kContactGone);
}

/// Returns a line about one finding.
QString Describe(const CheckedFinding& found) {
  const QString tag =
      found.listText.empty() ? qt::ToQString(found.finding.tag) : FromUtf8(found.listText);
  const QString problem = FromUtf8(found.description);
  const QString line =
      tag.isEmpty() ? qt::ToQString(ToSentence(found.description))
                    : Say(resources::kProblemOfTag).arg(qt::WithNumbersInOrder(tag), problem);
  if (found.isRepaired) {
    return Say(resources::kProblemRepaired).arg(line);
  }
  return found.reason.empty()
             ? line
             : Say(resources::kProblemNotRepaired).arg(line, FromUtf8(found.reason));
}

QString CountProblems(const session::CheckedStore& store, Repairing repairing) {
  const auto left = std::ranges::count(store.findings, false, &CheckedFinding::isRepaired);
  if (store.findings.empty()) {
    return Say(store.tagCount == 0 ? resources::kNothingToCheck : resources::kStoreIsWhole);
  }
  if (left == 0) {
    return Say(resources::kAllRepaired);
  }
  const bool isRepair = repairing == Repairing::kYes;
  if (left == 1) {
    return Say(isRepair ? resources::kOneProblemLeft : resources::kOneProblem);
  }
  return Say(isRepair ? resources::kManyProblemsLeft : resources::kManyProblems).arg(left);
}

}  // namespace

CheckSection::CheckSection(const SetupTools& tools, Errands& errands, QWidget* parent)
    : SetupSection(resources::kCheck, parent), m_tools(tools), m_errands(errands) {
  AddText(Say(resources::kCheckAdvice));
  m_check = AddButton(resources::kCheckNow, "check", [this] { Check(Repairing::kNo); });
  m_repair = AddButton(resources::kRepairNow, "repair", [this] { Check(Repairing::kYes); });
  ShowButtons({m_check});
  m_progress = new QProgressBar(this);
  m_progress->setObjectName(QStringLiteral("checkProgress"));
  m_progress->setTextVisible(false);
  m_progress->setAccessibleName(Say(resources::kCheck));
  m_progress->hide();
  AddControl(m_progress);
  m_news = AddNews();
  m_news->setObjectName(QStringLiteral("checkNews"));
  m_findings = AddText({});
  m_findings->setObjectName(QStringLiteral("findings"));
  m_findings->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void CheckSection::Check(Repairing repairing) {
  SetBusy(true);
  ShowText(*m_findings, {});
  ShowNews(*m_news,
           Say(repairing == Repairing::kYes ? resources::kRepairing : resources::kChecking));
  m_errands.Do(
      // On the thread of the errands, so the progress goes back to the event loop.
      [this, repairing, &options = m_tools.options] {
        const auto report = [this](std::size_t done, std::size_t all) {
          m_errands.Tell([this, done, all] {
            m_progress->setRange(0, static_cast<int>(all));
            m_progress->setValue(static_cast<int>(done));
          });
        };
        Gathering gathering;
        session::Session session(options, gathering);
        auto store = session::CheckStore(session, repairing, report);
        return Checked{std::move(store), gathering.GetText()};
      },
      [this, repairing](const Checked& checked) { Show(checked, repairing); });
}

void CheckSection::Show(const Checked& checked, Repairing repairing) {
  SetBusy(false);
  if (!checked.store) {
    ShowNews(*m_news, qt::ToQString(checked.message));
    return;
  }
  QStringList lines;
  for (const CheckedFinding& found : checked.store->findings) {
    lines.append(Describe(found));
  }
  if (!checked.message.empty()) {
    lines.append(qt::ToQString(checked.message));
  }
  ShowText(*m_findings, lines.join(u'\n'));
  ShowNews(*m_news, CountProblems(*checked.store, repairing));
  if (std::ranges::any_of(checked.store->findings, CanBeRepaired)) {
    ShowButtons({m_check, m_repair});
  } else {
    ShowButtons({m_check});
  }
  if (repairing == Repairing::kYes) {
    m_tools.work.Load();
  }
}

void CheckSection::SetBusy(bool isBusy) {
  SetupSection::SetBusy({m_check, m_repair}, isBusy);
  m_progress->setRange(0, 0);  // Runs to and fro until there is something to count.
  m_progress->setVisible(isBusy);
}

}  // namespace home

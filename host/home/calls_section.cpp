#include "host/home/calls_section.h"

#include <QLabel>
#include <QSignalBlocker>
#include <algorithm>
#include <array>

#include "host/home/say.h"
#include "host/home/sizes.h"
#include "resources/dial_window_strings.h"

namespace home {
namespace {

// In the order of the ways.
constexpr std::array kWayNames{resources::kTelephoneProgram, resources::kSerialTelephone,
                               resources::kOnlyShow};
static_assert(kWayNames.size() == dialer::kWays.size());

}  // namespace

CallsSection::CallsSection(const SetupTools& tools, Errands& errands, QWidget* parent)
    : SetupSection(resources::kCalls, parent),
      m_tools(tools),
      m_errands(errands),
      m_label(AddText(Say(resources::kCallWith))),
      m_ways(new ChoiceBox(this)) {
  m_label->setTextInteractionFlags(Qt::NoTextInteraction);
  m_label->setBuddy(m_ways);
  m_ways->setObjectName(QStringLiteral("ways"));
  m_ways->setMinimumHeight(kLeastTarget);
  m_ways->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  m_ways->setAccessibleName(Say(resources::kCallWith).remove(u'&'));
  m_ways->addItem(Say(resources::kFirstWay), QString());
  for (const dialer::WayWord& way : dialer::kWays) {
    m_ways->addItem(Say(kWayNames[static_cast<std::size_t>(way.way)]), qt::ToQString(way.word));
  }
  AddControl(m_ways);
  m_news = AddNews();
  m_news->setObjectName(QStringLiteral("wayNews"));
  connect(m_ways, &QComboBox::activated, this,
          [this](int index) { Choose(m_ways->itemData(index).toString()); });
}

void CallsSection::OnShown() {
  m_errands.Do(
      [&options = m_tools.options]() -> std::optional<dialer::Way> {
        machine::Backends backends(options);
        backends.ChangeNothing();
        return backends.HasRoot() ? dialer::ReadWay(backends.GetRegistry()) : std::nullopt;
      },
      [this](std::optional<dialer::Way> way) { Show(way); });
}

void CallsSection::Show(std::optional<dialer::Way> way) {
  // What is shown is not the choice of the user.
  const QSignalBlocker blocker(m_ways);
  const QString word = way ? qt::ToQString(dialer::WordOf(*way)) : QString();
  m_ways->setCurrentIndex(std::max(0, m_ways->findData(word)));
}

void CallsSection::Choose(const QString& word) {
  m_errands.Do(
      [&options = m_tools.options, way = dialer::FindWay(qt::ToText(word))] {
        machine::Backends backends(options);
        if (!backends.HasRoot()) {
          return false;
        }
        backends.MakeRoot();
        return dialer::ChooseWay(backends.GetRegistry(), way).has_value();
      },
      [this](bool isKept) {
        // After a failure the box shows what is stored, and not what was chosen.
        ShowNews(*m_news, isKept ? QString() : Say(resources::kWayNotKept));
        OnShown();
      });
}

}  // namespace home

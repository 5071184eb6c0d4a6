#pragma once

#include <optional>

#include "dialer/ways.h"
#include "host/home/setup_section.h"
#include "host/home/setup_tools.h"

namespace home {

/// The choice of the way by which the dialer calls.
class CallsSection final : public SetupSection {
 public:
  /// Both outlive this.
  CallsSection(const SetupTools& tools, Errands& errands, QWidget* parent);

  void OnShown() override;

 private:
  void Show(std::optional<dialer::Way> way);
  void Choose(const QString& word);

  const SetupTools& m_tools;
  Errands& m_errands;
  // Owned by the widget.
  QLabel* m_label;
  ChoiceBox* m_ways;
  LiveLabel* m_news;
};

}  // namespace home

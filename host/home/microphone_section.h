#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/home/setup_section.h"
#include "host/home/setup_tools.h"
#include "platform/wave_inputs.h"

class QComboBox;

namespace home {

class LevelMeter;

/// The microphone: the inputs to choose from, which follow the devices, and how loud it hears.
class MicrophoneSection final : public SetupSection {
 public:
  /// `tools` outlive this.
  MicrophoneSection(const SetupTools& tools, QWidget* parent);

  void OnShown() override;
  void OnLeft() override;

 private:
  /// What an errand found out.
  struct Found {
    std::vector<platform::WaveInput> inputs;
    std::u16string chosen;
  };

  void Look();
  void Show(const Found& found);
  void Choose(const std::u16string& name);
  void Listen();

  const SetupTools& m_tools;
  TakeRecorder m_recorder;
  bool m_isShown = false;
  Found m_found;
  // Owned by the widget.
  QLabel* m_label;
  QComboBox* m_inputs;
  LevelMeter* m_meter;
  LiveLabel* m_news;
  // In this order: the watch calls the errands, and both end before what they use.
  Errands m_errands;
  std::unique_ptr<platform::WaveInputs::Watch> m_watch;  ///< While the page is shown.
};

}  // namespace home

#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/ui.h"

namespace headless {

/// One message box that was shown.
struct ShownMessage {
  platform::MessageBox box;
  std::u16string caption;  ///< As a window would show it, wherever it comes from.
  platform::MessageAnswer answer = platform::MessageAnswer::kOk;
};

/// Message boxes without a window: each is remembered, told to a listener and answered at once.
class HeadlessUi final : public platform::Ui {
 public:
  using Answerer = std::function<platform::MessageAnswer(const platform::MessageBox&)>;
  using Listener = std::function<void(const ShownMessage&)>;

  /// `applicationName` is the caption of the framework's plain boxes.
  explicit HeadlessUi(std::u16string applicationName = {});

  platform::MessageAnswer ShowMessage(const platform::MessageBox& box) override;

  /// Both are called on the thread that shows the box, and may themselves show one. Without an
  /// answerer every box is answered with OK.
  void SetAnswerer(Answerer answerer);
  void SetListener(Listener listener);

  /// Every box so far, in the order in which they were answered.
  [[nodiscard]] std::vector<ShownMessage> GetMessages() const;

 private:
  const std::u16string m_applicationName;
  mutable std::mutex m_mutex;
  Answerer m_answerer;
  Listener m_listener;
  std::vector<ShownMessage> m_messages;
};

}  // namespace headless

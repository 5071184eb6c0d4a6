#pragma once

#include <QWidget>
#include <functional>
#include <initializer_list>
#include <vector>

#include "dialer/conversation.h"

class QLabel;
class QProgressBar;
class QVBoxLayout;

namespace home {

class Avatar;
class LevelMeter;
class LiveLabel;

/// What the page of the dialer shows: one thing at a time, large, in the middle.
class DialStage : public QWidget {
 public:
  using Choose = std::function<void(std::size_t choice)>;

  DialStage(Choose choose, QWidget* parent);

  /// Screen readers say title and text.
  void ShowText(const QString& title, const QString& text);
  /// `note` is what went before, such as that the name was not understood. It can be empty.
  void ShowListening(const QString& note);
  void ShowProgress(const dialer::ListeningProgress& progress);
  /// Somebody is about to be called, or was. `aloud` is what screen readers say. `note` stands
  /// below the number.
  void ShowCallee(const dialer::Callee& callee, const QString& aloud, const QString& note);
  void ShowLeft(std::uint32_t milliseconds);
  /// The callees are buttons with numbers.
  void ShowChoice(const QString& title, const QString& text,
                  const std::vector<dialer::Callee>& callees);

 private:
  void ShowOnly(std::initializer_list<QWidget*> parts);

  Choose m_choose;
  // Owned by the widgets.
  Avatar* m_avatar;
  LiveLabel* m_title;
  QLabel* m_text;
  QProgressBar* m_left;
  LevelMeter* m_meter;
  QWidget* m_choices;
  QVBoxLayout* m_choiceList;
};

/// Returns the name of somebody who may be called, and the number with its kind.
[[nodiscard]] QString NameOf(const dialer::Callee& callee);
[[nodiscard]] QString NumberOf(const dialer::Callee& callee);

}  // namespace home

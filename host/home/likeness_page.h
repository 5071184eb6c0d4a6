#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "host/home/likeness.h"
#include "host/home/page.h"
#include "host/home/work.h"

class QBoxLayout;
class QLabel;
class QListWidget;
class QPushButton;
class QStackedLayout;

namespace home {

class ButtonRow;
class EmptyNotice;
class LikenessPicture;

/// Shows which names are alike, the worst pair first. Both can be played, and each taught again.
class LikenessPage : public Page {
 public:
  /// Both outlive this.
  LikenessPage(Work& work, Frame& frame);
  ~LikenessPage() override;

  void OnShelf(const std::shared_ptr<const Shelf>& shelf) override;
  void OnShown(const std::u16string& tag) override;
  void OnLeft() override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Arrange();
  [[nodiscard]] QWidget* MakePairs();
  [[nodiscard]] QWidget* MakeButtons();
  void ShowPairs();
  void ShowCurrent();
  void Play();
  void PlaySecond(int turn, const std::u16string& tag);
  void OnPlayed(int turn, const Outcome& outcome);
  void StopPlaying();
  void TeachAgain(std::size_t side);
  [[nodiscard]] const AlikePair* GetCurrent() const;
  [[nodiscard]] QString NameOf(std::size_t index) const;
  [[nodiscard]] QString Describe(std::size_t index) const;

  Work& m_work;
  Frame& m_frame;
  std::shared_ptr<const Shelf> m_shelf;  ///< Null until the store has been read.
  std::vector<AlikePair> m_pairs;
  bool m_isPlaying = false;
  int m_turn = 0;  ///< How often something was played or stopped.
  // Owned by the widgets.
  QLabel* m_summary;
  QBoxLayout* m_halves;
  LikenessPicture* m_picture;
  QListWidget* m_list = nullptr;
  std::array<QLabel*, 2> m_names{};
  ButtonRow* m_buttons = nullptr;
  QPushButton* m_play = nullptr;
  std::array<QPushButton*, 2> m_teach{};
  EmptyNotice* m_notice;
  QStackedLayout* m_centre;
};

}  // namespace home

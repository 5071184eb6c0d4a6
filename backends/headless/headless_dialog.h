#pragma once

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "framework/item_list.h"
#include "platform/dialog.h"
#include "platform/threads.h"
#include "resources/dialog_template.h"

namespace headless {

/// One stroke of what a dialog painted.
struct PaintedStroke {
  enum class Kind : std::uint8_t { kLine, kText, kPicture };

  Kind kind = Kind::kLine;
  platform::Rect area;  ///< A line from left top to right bottom; a text or picture from left top.
  std::u16string text;
  platform::Font font;
  platform::Color color;
  int picture = 0;
};

/// A dialog without a window. It keeps what its controls hold, and lets a program do what a user
/// would do: press, choose, ask for help. A press on a control that is disabled or missing does
/// nothing, as on a screen.
class HeadlessDialog final : public platform::DialogWindow {
 public:
  /// Sets the dialog up. `threads` serves the wait for its end. It is null if only the user ends
  /// the dialog.
  HeadlessDialog(const resources::DialogTemplate& dialog, platform::DialogHandler& handler,
                 platform::Threads* threads);
  ~HeadlessDialog() override;

  // What a user does.

  void Press(int id);
  void Choose(int id, int index);
  /// Replaces the text in the field of an editable combo box.
  void Type(int id, std::u16string_view text);
  void ClickAt(platform::Point point);
  bool AskForHelp();
  void PressEnter();
  void Close();

  // What a user sees and the page cannot ask for.

  [[nodiscard]] const resources::DialogTemplate& GetTemplate() const { return m_template; }
  [[nodiscard]] bool HasControl(int id) const;
  [[nodiscard]] bool IsVisible(int id) const;
  [[nodiscard]] std::vector<std::u16string> GetItems(int id) const;
  [[nodiscard]] std::optional<platform::Font> GetFont(int id) const;
  struct Progress {
    platform::ProgressBar bar;
    int position = 0;
  };
  [[nodiscard]] std::optional<Progress> GetProgress(int id) const;
  [[nodiscard]] std::vector<PaintedStroke> Paint();
  [[nodiscard]] int CountInvalidations() const { return m_invalidations; }
  [[nodiscard]] std::optional<int> GetResult() const;

  /// Delivers the commands that the page has posted to itself. A presentation calls this after it
  /// has set the dialog up. What the page posts while it serves a user comes right after that by
  /// itself.
  void DeliverPosted();
  /// Returns whether a posted command waits to be delivered.
  [[nodiscard]] bool HasPosted() const { return !m_posted.empty(); }

  /// Waits for at most `milliseconds` until the dialog has ended. Returns false if it has not; if
  /// there is no limit, nothing can end it any more.
  bool WaitForEnd(std::uint32_t milliseconds = platform::kNoLimit);

  // What the page asks for.

  void SetText(int id, std::u16string_view text) override;
  [[nodiscard]] std::u16string GetText(int id) const override;
  void Enable(int id, bool isEnabled) override;
  [[nodiscard]] bool IsEnabled(int id) const override;
  void SetFont(int id, const platform::Font& font) override;
  int AddItem(int id, std::u16string_view text) override;
  void DeleteItem(int id, int index) override;
  void ResetItems(int id) override;
  [[nodiscard]] int GetItemCount(int id) const override;
  [[nodiscard]] std::u16string GetItemText(int id, int index) const override;
  [[nodiscard]] std::optional<int> GetSelection(int id) const override;
  void SetSelection(int id, std::optional<int> index) override;
  void SetHorizontalExtent(int id, int width) override;
  [[nodiscard]] int GetHorizontalExtent(int id) const override;
  [[nodiscard]] int GetTextWidth(int id, std::u16string_view text) const override;
  void SetCheck(int id, bool isChecked) override;
  [[nodiscard]] bool IsChecked(int id) const override;
  void CreateProgressBar(int id, const platform::ProgressBar& bar) override;
  void StepProgress(int id) override;
  void DestroyProgressBar(int id) override;
  [[nodiscard]] platform::Rect GetControlRect(int id) const override;
  [[nodiscard]] platform::Rect GetClientRect() const override;
  void PostCommand(int id) override;
  void Invalidate() override;
  void EndDialog(int result) override;

 private:
  struct Control {
    resources::ControlTemplate description;
    std::u16string text;
    bool isEnabled = true;
    std::optional<framework::ItemList> items = std::nullopt;  ///< Of a combo box or a list box.
    int horizontalExtent = 0;
    bool isChecked = false;
    std::optional<platform::Font> font = std::nullopt;
  };

  [[nodiscard]] Control* Find(int id);
  [[nodiscard]] const Control* Find(int id) const;
  /// Returns null for a control without items.
  [[nodiscard]] framework::ItemList* FindItems(int id);
  [[nodiscard]] const framework::ItemList* FindItems(int id) const;

  const resources::DialogTemplate& m_template;
  platform::DialogHandler& m_handler;
  std::map<int, Control> m_controls;
  int m_invalidations = 0;
  std::deque<int> m_posted;
  std::unique_ptr<platform::Event> m_ended;
  mutable std::mutex m_mutex;  ///< Of what other threads may change: texts, bars and the result.
  std::map<int, Progress> m_bars;
  std::optional<int> m_result;
};

}  // namespace headless

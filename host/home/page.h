#pragma once

#include <QStringList>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <string>

#include "host/home/shelf.h"
#include "host/home/work.h"

namespace home {

enum class PageId : std::uint8_t { kTeaching, kLikeness, kSetup, kTrash, kDial };

/// What a page may ask of the window around it.
class Frame {
 public:
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  /// Leaves the page and shows the list of tags.
  virtual void ShowTags() = 0;
  /// Leaves the page and shows another one. `tag` is what it is opened for; it can be empty.
  virtual void ShowPage(PageId page, const std::u16string& tag) = 0;
  /// Shows the message in the bar below the page, and screen readers say it. Does nothing if there
  /// is no message.
  virtual void Report(const Outcome& outcome) = 0;

 protected:
  Frame() = default;
  ~Frame() = default;
};

/// A page of the window other than the list of tags. The header of the window shows its
/// windowTitle() next to a button that goes back. Escape goes back too, unless the page takes the
/// key. The frame and what the page works on outlive it.
class Page : public QWidget {
 public:
  using QWidget::QWidget;

  /// The store was read, or has changed. The first shelf can come after OnShown. All are judged.
  virtual void OnShelf(const std::shared_ptr<const Shelf>& /*shelf*/) {}
  /// The page is about to be shown. `tag` is the tag that is taught again or looked at. It is empty
  /// if the page is opened for none.
  virtual void OnShown(const std::u16string& /*tag*/) {}
  /// The page is hidden, or the window closes. Ends what the page was doing, and keeps nothing of
  /// it.
  virtual void OnLeft() {}
  /// Files were dropped on the window, which has opened this page for them.
  virtual void OnFilesDropped(const QStringList& /*paths*/) {}
};

}  // namespace home

#pragma once

#include <libebook/libebook.h>

#include <functional>
#include <string>
#include <vector>

#include "backends/ebook/glib_pointers.h"
#include "backends/vcard/contact_source.h"

namespace ebook_test {

/// The library that was built next to the tests.
[[nodiscard]] vcard::DesktopSource::Library LoadDesktopBooks();

/// An address book of the desktop session that in_desktop_session.sh has made. In any other session
/// it ends the program, before it touches the user's own. Every call fails the test if the server
/// refuses.
class DesktopBook {
 public:
  /// The book that every desktop has.
  DesktopBook();

  /// A new one, with its lasting name in ASCII.
  explicit DesktopBook(const std::string& uid);

  void Add(const std::vector<std::string>& vcards);
  void Add(const std::function<void(EContact&)>& fillIn);
  void Remove(const std::string& contactUid);
  /// Switches the whole book on or off, as a user does in the desktop's settings.
  void SetEnabled(bool isEnabled);

 private:
  void Connect();

  ebook::ObjectPointer<ESourceRegistry> m_registry;
  ebook::ObjectPointer<ESource> m_source;
  ebook::ObjectPointer<EBookClient> m_client;
};

}  // namespace ebook_test

#pragma once

#include <cstddef>
#include <string>

namespace vcard {

/// Something that was passed over while contacts were read, for who can mend it.
struct Remark {
  std::u16string place;  ///< A file, an address book of the desktop, or a key of the registry.
  std::size_t line = 0;  ///< Of the file, from 1; 0 if none is meant.
  std::string text;      ///< A sentence without its full stop; it may quote what was read.

  friend bool operator==(const Remark&, const Remark&) = default;
};

}  // namespace vcard

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/contacts_store.h"
#include "tags/contact_messages.h"

namespace tags {

/// What is kept between one contact and the next. A part that is too long is not taken, so that
/// what the contact before left there shows through.
struct ContactBuffers {
  std::u16string name;
  std::u16string company;
};

/// Where `text` has room there, it takes the place of `buffer`.
void ReplaceIfFits(std::u16string& buffer, std::u16string_view text);

/// How a contact reads in the tag list.
struct TagText {
  std::u16string text;                    ///< Not bounded: a name and a number.
  bool hasNumber = false;                 ///< False where the phone-type word names no kind.
  std::optional<ContactMessage> failure;  ///< Where there is one nothing else counts.
};

/// Reads the contact of a tag just recorded: first, middle and last name, then the number of the
/// kind and its mark. The contact combo box has the last name first; both are meant so.
[[nodiscard]] TagText ReadForRecording(platform::Contact& contact, std::u16string_view phoneType,
                                       ContactBuffers& buffers);

/// Reads the contact of a tag for the list of all tags. Much as for a recording, with its own rules
/// where parts are too long.
[[nodiscard]] TagText ReadForTagList(platform::Contact& contact, std::u16string_view phoneType);

}  // namespace tags

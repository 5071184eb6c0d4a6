#pragma once

#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/contacts_store.h"
#include "platform/result.h"
#include "tags/contact_messages.h"

namespace tags {

/// Opens the connection to the contacts and logs on. Tries three times to get the connection,
/// 200 ms apart. The caller logs the store off at the end, also if this fails.
[[nodiscard]] platform::Result<void, ContactMessage> OpenContacts(platform::ContactsStore& store,
                                                                  platform::Clock& clock);

/// What is kept between one contact and the next. A part that is too long is not taken, so what the
/// contact before left there shows through.
struct ContactBuffers {
  std::u16string name;
  std::u16string company;
};

/// Puts `text` into `buffer` if there is room for it.
void ReplaceIfFits(std::u16string& buffer, std::u16string_view text);

/// How a contact reads in the tag list.
struct TagText {
  std::u16string text;     ///< Not bounded: a name and a number.
  bool hasNumber = false;  ///< False if the phone-type word names no kind.
};

using ReadTagText = platform::Result<TagText, ContactMessage>;

/// Reads the contact of a tag just recorded: first, middle and last name, then the number of the
/// kind and its mark. The contact combo box has the last name first; both are meant so.
[[nodiscard]] ReadTagText ReadForRecording(platform::Contact& contact,
                                           std::u16string_view phoneType, ContactBuffers& buffers);

/// Reads the contact of a tag for the list of all tags. It differs from a recording in what becomes
/// of parts that are too long.
[[nodiscard]] ReadTagText ReadForTagList(platform::Contact& contact, std::u16string_view phoneType);

}  // namespace tags

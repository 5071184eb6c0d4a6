#pragma once

#include <string>
#include <vector>

#include "host/home/gathering.h"
#include "host/home/work.h"
#include "host/session/session.h"
#include "storage/tag_trash.h"

namespace home {

/// The address book as long as this lives, to find out whose a tag is.
class KnownPeople {
 public:
  explicit KnownPeople(session::Session& session);
  KnownPeople(const KnownPeople&) = delete;
  KnownPeople& operator=(const KnownPeople&) = delete;
  ~KnownPeople();

  /// What is known about the person of a tag.
  enum class Presence : std::uint8_t {
    kHere,       ///< In the address book, or nobody knows, as it cannot be read.
    kGone,       ///< Was in this address book.
    kElsewhere,  ///< In another one. With such a tag, this one could not be used any more.
  };
  [[nodiscard]] Presence Find(const storage::TagEntry& entry) const;

 private:
  session::Session& m_session;
  bool m_areRead = false;
};

/// What is in the trash.
struct TrashList {
  Outcome outcome;
  std::vector<DeletedTag> tags;  ///< The latest deletion first. Files of no tag are not among them.
};

/// Reads the trash. Changes nothing.
[[nodiscard]] TrashList ReadTrash(const machine::Options& options);

/// Returns a sentence if a tag of the trash cannot be restored as store and address book are now.
/// Returns an empty text if it can.
[[nodiscard]] std::u16string FindObstacle(const storage::TagTrash& trash,
                                          const storage::TagParts& parts,
                                          const storage::TagEntry& entry,
                                          const KnownPeople& people);

}  // namespace home

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "maintenance/tag_quality.h"

namespace home {

/// A voice tag as the window shows it.
struct Tag {
  std::u16string name;                   ///< In the store. No two tags have the same.
  std::optional<std::int32_t> oid;       ///< Of the person. Nothing if it is not known.
  std::u16string contact;                ///< The tag's own name if it is not known whose tag it is.
  std::u16string number;                 ///< Empty if it is not known.
  std::u16string kind;                   ///< The word of the number's kind, such as "Mobile".
  std::optional<std::int64_t> taughtAt;  ///< When its recording was written: Unix time in seconds.
  std::optional<double> seconds;         ///< Length of its recording.
  maintenance::TagQuality quality;       ///< Its indices are those of Shelf::tags.
  bool isStale = false;                  ///< Its contact does not exist any more.
  std::u16string problem;  ///< A sentence if the tag or its contact cannot be read. Else empty.
};

struct Number {
  std::u16string kind;  ///< The word by which the page knows the kind.
  std::u16string text;  ///< As the contact has it.
};

/// Somebody who can be taught: a contact with at least one number.
struct Person {
  std::int32_t oid = 0;
  std::u16string name;
  std::u16string company;
  std::vector<Number> numbers;  ///< In the order of the page's box.
};

/// All that the window shows. It is a value: a new one is made if anything has changed.
struct Shelf {
  /// If not, the quality of the tags, their nearest ones and the people are not known yet, and
  /// another shelf follows.
  bool areJudged = true;
  std::vector<Tag> tags;  ///< In the order of the store.
  std::vector<Person> people;
  std::u16string peopleProblem;  ///< A sentence if the contacts cannot be read. Else empty.
  std::u16string tagsProblem;  ///< A sentence if it is not known which tags there are. Else empty.
};

}  // namespace home

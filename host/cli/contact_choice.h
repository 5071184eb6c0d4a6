#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/cli/session.h"
#include "host/session/page_run.h"

namespace cli {

/// A contact as `contacts list` shows it.
struct NamedContact {
  std::int32_t oid = 0;
  std::int32_t listNumber = 0;  ///< From 1.
  std::u16string name;
};

/// Returns the indexes of the contacts that `wanted` may mean, in UTF-8. It means the one with that
/// identifier, else the one of that name, else the one with that number in `contacts list`, else
/// the one of those words in another order, else those with each of those words in their names.
[[nodiscard]] std::vector<std::size_t> FindContacts(std::span<const NamedContact> contacts,
                                                    const std::string& wanted);

/// Chooses the one contact that FindContacts finds. If it finds none, or several, reports the
/// candidates and returns false.
[[nodiscard]] bool ChooseContact(Session& session, session::PageRun& run,
                                 const std::string& wanted);

/// Chooses the number of the kind with that word, such as "Mobile", in any letter case. If the
/// contact has no such number, reports the kinds that it has and returns false.
[[nodiscard]] bool ChooseNumber(Session& session, session::PageRun& run, const std::string& kind);

}  // namespace cli

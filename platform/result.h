#pragma once

#include <tl/expected.hpp>
#include <utility>

namespace platform {

/// What an operation gives, or why it failed. This is the one way in which the system says that
/// something failed, except for the numbered codes that other programs and users know.
///
/// An operation that gives nothing returns Result<void, Error>, and `return {};` if it worked.
template <typename Value, typename Error>
using Result = tl::expected<Value, Error>;

/// `return Failure(error);` ends an operation that failed.
template <typename Error>
[[nodiscard]] constexpr tl::unexpected<Error> Failure(Error error) {
  return tl::unexpected<Error>(std::move(error));
}

/// Returns the result of a deletion. What was not there counts as deleted.
template <typename Error>
[[nodiscard]] Result<void, Error> AcceptMissing(Result<void, Error> deleted) {
  return !deleted && deleted.error() == Error::kNotFound ? Result<void, Error>() : deleted;
}

}  // namespace platform

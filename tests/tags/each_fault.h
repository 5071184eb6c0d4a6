#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

#include "tests/tags/faulty_page.h"

// Each call that the page makes of the machine fails, once or for good, at every position while a
// tag is learned, one is deleted, or all are, and while the page opens. Whatever fails: the message
// says so, the store holds whole tags or what a deletion is known to leave, and the page goes on
// working.

using Fault = std::tuple<FaultyPart, support::Failing>;

/// The page after each fault in turn; the last one meets none, since what is done makes fewer
/// calls.
class EachFault : public testing::TestWithParam<Fault> {
 protected:
  /// Opens a page, lets a call fail, has `act` use the page, and `check` look at it.
  void Run(const std::function<void(FaultyPage&)>& act,
           const std::function<void(FaultyPage&)>& check);

  /// A new tag without any fault, on the page as it is or, if its process ended, on a new one.
  static void ExpectThatATagCanBeLearned(FaultyPage& page);

  /// That the entries are those of the table, in its order.
  static void ExpectTableOfEntries(FaultyPage& page);
};

[[nodiscard]] std::string NameOfFault(const testing::TestParamInfo<Fault>& info);

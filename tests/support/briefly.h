#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

/// Leaves the rest of a case out if it would take long: `./check` sets the variable for the
/// sanitizers, and `./check --long` does not.
#define SKIP_IF_BRIEF()                            \
  if (std::getenv("VOXTREL_BRIEFLY") != nullptr) { \
    GTEST_SKIP() << "left to a check with --long"; \
  }                                                \
  static_assert(true)

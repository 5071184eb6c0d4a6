#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the run of a fuzz target if `holds` is false; the fuzzer then keeps the input.
inline void Require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

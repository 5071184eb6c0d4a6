#pragma once

#include <cstddef>
#include <cstdint>

// What makes the inner loops fast on each processor. All of it changes how much is calculated at
// the same time, and none of it what is calculated: the bits are the same everywhere.

/// Stands before a function. The function is compiled for vectors of 16 and of 32 bytes, and the
/// loader of the program chooses by the processor that it finds. The wider set is named without
/// fused multiply-add, which would round once and not twice. What such a function calls is widened
/// with it only if it is inlined.
///
/// The build defines VOXTREL_TWO_VECTOR_WIDTHS if there is such a choice (CMakeLists.txt says
/// when).
#if defined(VOXTREL_TWO_VECTOR_WIDTHS)
#define VOXTREL_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VOXTREL_VECTOR_CLONES
#endif

/// Stands before a function for vectors of 32 bytes. Call it only if HasWideVectors says so. It is
/// for the rare loop that is to be written otherwise for each width.
#if defined(VOXTREL_TWO_VECTOR_WIDTHS)
#define VOXTREL_WIDE __attribute__((target("avx2")))
#else
#define VOXTREL_WIDE
#endif

/// Stands before what such a function is made of.
#define VOXTREL_INLINE [[gnu::always_inline]] inline

/// Stands before an inner loop of simple steps. On processors without vectors the counting would
/// take longer than the work.
#if defined(__SOFTFP__)
#define VOXTREL_UNROLL _Pragma("GCC unroll 16")
#else
#define VOXTREL_UNROLL
#endif

/// Stands before a loop over lanes in which no lane looks at what another one writes.
#if defined(__GNUC__) && !defined(__clang__)
#define VOXTREL_LANES _Pragma("GCC ivdep")
#else
#define VOXTREL_LANES
#endif

namespace voicemath {

/// Returns whether the processor has vectors of 32 bytes and the build makes use of them.
[[nodiscard]] VOXTREL_INLINE bool HasWideVectors() {
#if defined(VOXTREL_TWO_VECTOR_WIDTHS)
  return __builtin_cpu_supports("avx2") != 0;
#else
  return false;
#endif
}

// The next constants depend on the kind of processor and not on the width of its vectors.
#if defined(__SOFTFP__)
/// How many float sums are formed side by side. Without a floating-point unit, forming them side by
/// side saves nothing.
inline constexpr std::size_t kFloatLanes = 1;
/// How many frames are transformed side by side.
inline constexpr std::size_t kFrameLanes = 1;
/// Whether there are vectors.
inline constexpr bool kVectorsFast = false;
/// A sample, or a sum of some of them. A float holds it exactly, so it may be either.
using LaneSample = std::int32_t;
/// How many sums of 16-bit products are formed side by side.
inline constexpr std::size_t kProductLanes = 1;
/// Whether a product is cheaper than to look it up in sums that were formed before.
inline constexpr bool kMultipliesFast = false;
/// Whether the processor itself forms roots and doubles.
inline constexpr bool kRootsFast = false;
#else
inline constexpr std::size_t kFloatLanes = 8;
inline constexpr std::size_t kFrameLanes = 8;
inline constexpr bool kVectorsFast = true;
using LaneSample = float;
inline constexpr std::size_t kProductLanes = 8;
inline constexpr bool kMultipliesFast = true;
inline constexpr bool kRootsFast = true;
#endif

}  // namespace voicemath

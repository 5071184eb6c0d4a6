#pragma once

#include <cstddef>
#include <cstdint>

/// Before a function: compiled for vectors of 16 and of 32 bytes; the loader of the program chooses
/// by the processor it finds. The source is one and the arithmetic is the same: the wider set is
/// named without fused multiply-add, which rounds once where two roundings are part of the result.
/// What such a function calls is only widened with it where it is inlined.
///
/// Plain where there is no choice: other processors, compilers that do not know the attribute for
/// every kind of function, and sanitizers, which are not up yet when the loader asks.
#if defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) &&                       \
    !defined(VOXTREL_ONE_VECTOR_WIDTH)
#define VOXTREL_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VOXTREL_VECTOR_CLONES
#endif

/// Before what such a function is made of.
#define VOXTREL_INLINE [[gnu::always_inline]] inline

/// Before an inner loop of simple steps, for processors on which it does not become one of vectors:
/// there the counting takes longer than the work.
#if defined(__SOFTFP__)
#define VOXTREL_UNROLL _Pragma("GCC unroll 16")
#else
#define VOXTREL_UNROLL
#endif

/// Before a loop over lanes, in which no lane looks at what another one writes.
#if defined(__GNUC__) && !defined(__clang__)
#define VOXTREL_LANES _Pragma("GCC ivdep")
#else
#define VOXTREL_LANES
#endif

namespace voicemath {

// What depends on the kind of processor and not on the width of its vectors.
#if defined(__SOFTFP__)
/// How many float sums are formed side by side. Without a floating-point unit each costs as much as
/// the first.
inline constexpr std::size_t kFloatLanes = 1;
/// How many frames are transformed side by side.
inline constexpr std::size_t kFrameLanes = 1;
/// Whether there are vectors.
inline constexpr bool kVectorsFast = false;
/// A sample, or a sum of some of them, where it is as good a whole number as a float.
using LaneSample = std::int32_t;
/// How many sums of 16-bit products are formed side by side.
inline constexpr std::size_t kProductLanes = 1;
/// Whether multiplying by what could be known beforehand is cheaper than looking it up.
inline constexpr bool kMultipliesFast = false;
/// Whether roots, and doubles, are the processor's own work.
inline constexpr bool kRootsFast = false;
#else
inline constexpr std::size_t kFloatLanes = 8;
inline constexpr std::size_t kFrameLanes = 8;
inline constexpr bool kVectorsFast = true;
using LaneSample = float;
inline constexpr std::size_t kProductLanes = 4;
inline constexpr bool kMultipliesFast = true;
inline constexpr bool kRootsFast = true;
#endif

}  // namespace voicemath

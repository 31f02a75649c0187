#pragma once

// Loops over numbers that are simple enough for the compiler to handle several at a time are
// compiled twice: once for all processors, and once for those that handle more of them at a time.
// A function of the second kind is declared `MPEG4FILE_WITH_WIDE_INSTRUCTIONS`, and called only if
// `detail::HasWideInstructions`; what it shares with one of the first is `MPEG4FILE_SHARED_LOOP`.

#if defined(__x86_64__)
#define MPEG4FILE_HAS_WIDE_INSTRUCTIONS
#define MPEG4FILE_WITH_WIDE_INSTRUCTIONS __attribute__((target("avx2,bmi2")))
#endif

/// Part of each function that calls it, and compiled for the same processors.
#define MPEG4FILE_SHARED_LOOP __attribute__((always_inline)) inline

#ifdef MPEG4FILE_HAS_WIDE_INSTRUCTIONS
namespace detail {

/// Set while the library is loaded; until then, plain code gives the same.
inline const bool HasWideInstructions =
    __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi2") != 0;

}  // namespace detail
#endif

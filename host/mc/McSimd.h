#pragma once

/// MC_TARGET_CLONES before a function with a hot loop compiles it twice, for AVX2 and for the plain
/// instruction set; the loader picks one, so a single binary runs anywhere. The loop must stand in the
/// function itself: neither the body of an OpenMP region nor a lambda in it is compiled twice.
///
/// Empty under sanitizers: the resolver runs before their start-up code and would crash.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
#define MC_TARGET_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define MC_TARGET_CLONES
#endif

#pragma once

// The compiler makes a second copy of such a function for processors with AVX2, and the loader takes the right one.
#if defined(__x86_64__)
#define ORVEX_VECTOR_CLONES [[gnu::target_clones("avx2", "default")]]
#else
#define ORVEX_VECTOR_CLONES
#endif

// What those functions consist of has to be part of either copy.
#define ORVEX_INLINE [[gnu::always_inline]] inline

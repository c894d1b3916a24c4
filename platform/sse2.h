// Whether the processor is known to have SSE2 when the code is compiled (VOK_HAS_SSE2), and its functions
// then. Every x86-64 processor has it; code for it stands beside portable code that others use and that the
// tests compare it with.
#ifndef VOK_PLATFORM_SSE2_H
#define VOK_PLATFORM_SSE2_H

#if defined(__SSE2__) || defined(_M_X64)
#define VOK_HAS_SSE2 1
#include <emmintrin.h>
#else
#define VOK_HAS_SSE2 0
#endif

#endif

// The square root as the processor gives it. That of MinGW's library, which only code that is not optimised
// calls, is rounded twice: to the 64 bits of the old registers, then to the 53 of a double.

#include <emmintrin.h>

extern "C" double sqrt(double x) {
  const __m128d root = _mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(x));
  return _mm_cvtsd_f64(root);
}

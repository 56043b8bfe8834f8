// The precision of multi-precision floats.
#pragma once

#include <cstdint>

namespace vesko {

extern int32_t max_mantissa_nbits;

void set_mpf_ndigits(int32_t nbits);

}  // namespace vesko

// The precision of multi-precision floats, in bits of the mantissa: the setting mpf_ndigits.
#include "multiprec/precision.h"

namespace vesko {

int32_t max_mantissa_nbits = 128;

void set_mpf_ndigits(int32_t nbits) { max_mantissa_nbits = nbits; }

}  // namespace vesko

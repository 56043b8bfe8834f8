// Elementary functions whose result can be complex, on raw parts.
#pragma once

namespace vesko {

// a ^ b. A negative base with a fractional exponent takes the principal value; the real part of a square root
// is exactly 0.
void real_real_pow(double a, double b, double &re, double &im);

}  // namespace vesko

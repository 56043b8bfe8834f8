// Elementary functions whose result can be complex, on raw parts.
#include "numerics/complex_scalar.h"

#include <cmath>
#include <numbers>

namespace vesko {

void real_real_pow(double a, double b, double &re, double &im) {
    if (!(a < 0.0) || b == std::floor(b)) {
        re = std::pow(a, b);
        im = 0.0;
        return;
    }
    const double r = std::exp(b * std::log(-a)), angle = std::numbers::pi * b;
    re = b == 0.5 ? 0.0 : r * std::cos(angle);
    im = b == 0.5 ? r : r * std::sin(angle);
}

}  // namespace vesko

// Plain numbers out of values: the readers of indices, limits, sizes and parameters.
#include <cmath>

#include "values/elements.h"

namespace vesko {

bool extract_RS(const Matrix *m, double &x) {
    if (m->length != 1 || !isRealLike(m->l2type)) return false;
    switch (m->l2type) {
        case L2::RS: x = m->rdata[0]; return true;
        case L2::IS: x = m->ints()[0]; return true;
        default: break;
    }
    if (hasPlainElements(m->l2type)) {
        x = elementOf(m, 0);
        return true;
    }
    Matrix *real = convToDb(m);
    x = real->rdata[0];
    releaseMat(real);
    return true;
}

bool extract_CS(const Matrix *m, double &re, double &im) {
    if (m->l2type != L2::CS) {
        im = 0;
        return extract_RS(m, re);
    }
    re = m->re()->rdata[0];
    im = m->im()->rdata[0];
    return true;
}

bool extract_integer(const Matrix *m, int32_t &n) {
    double x;
    if (!extract_RS(m, x) || x != std::floor(x) || x < INT32_MIN || x > INT32_MAX) return false;
    n = static_cast<int32_t>(x);
    return true;
}

bool extract_2_reals(const Matrix *m, double &a, double &b) {
    if (m->length != 2) return false;
    if (isList(m->l2type)) return extract_RS(m->entries()[0], a) && extract_RS(m->entries()[1], b);
    if (!hasPlainElements(m->l2type)) return false;
    a = elementOf(m, 0);
    b = elementOf(m, 1);
    return true;
}

bool isIntMat(const Matrix *m) {
    for (uint32_t i = 0; i < m->length; i++)
        if (m->rdata[i] != std::floor(m->rdata[i])) return false;
    return true;
}

}  // namespace vesko

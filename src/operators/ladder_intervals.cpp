// Intervals shifted by a number, and interval arithmetic. A value holds n groups: lower end, upper end, lower
// flag, upper flag.
#include <cmath>
#include <cstring>

#include "engine/errors.h"
#include "operators/ladder.h"

namespace vesko {

constexpr uint32_t group = 4;

// An infinite number swallows the interval, NaN makes NaN of it. Integers are not accepted.
Matrix *shiftInterval(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const bool interval_left = a->l2type == L2::ITV;
    const Matrix *interval = interval_left ? a : b, *number = interval_left ? b : a;
    if (interval->l2type != L2::ITV || number->l1type != L1::RS) error_undef_opr2(node);
    const double s = interval_left && op == Arith::Sub ? -number->rdata[0] : number->rdata[0];
    if (std::isnan(s)) return theNanMat();
    if (std::isinf(s)) return newItvMat(s, s, 1.0, 1.0);
    const bool mirrored = !interval_left && op == Arith::Sub;
    const uint32_t n = interval->nrows;
    Matrix *result = allocItvMat(n);
    for (uint32_t k = 0; k < n; k++) {
        const double *x = interval->rdata + group * (mirrored ? n - 1 - k : k);
        const double shifted[group] = {x[0] + s, x[1] + s, x[2], x[3]};
        const double reflected[group] = {s - x[1], s - x[0], x[3], x[2]};
        memcpy(result->rdata + group * k, mirrored ? reflected : shifted, sizeof shifted);
    }
    return result;
}

// One end of a result: made of an end of each operand; it belongs to the result only if both belong to
// theirs.
struct End {
    double value, flag;
};
static End endOf(Arith op, const double *x, unsigned i, const double *y, unsigned j) {
    const double flag = x[2 + i] == 1.0 && y[2 + j] == 1.0 ? 1.0 : 0.0;
    if (op == Arith::Sum) return {x[i] + y[j], flag};
    if (op == Arith::Sub) return {x[i] - y[j], flag};
    return {x[i] == 0 || y[j] == 0 ? 0 : x[i] * y[j], flag};
}

static bool replacesEnd(const End &end, const End &by, bool lower) {
    if (by.value == end.value) return by.flag > end.flag;
    return lower ? by.value < end.value : by.value > end.value;
}

// A product takes its ends from any pair of ends; a sum or a difference knows them.
static void combine(Arith op, const double *x, const double *y, double *result) {
    const unsigned across = op == Arith::Sub;
    End lower = endOf(op, x, 0, y, across), upper = endOf(op, x, 1, y, 1 - across);
    for (unsigned k = 0; op == Arith::Mpy && k < 4; k++) {
        const End end = endOf(op, x, k / 2, y, k % 2);
        if (replacesEnd(lower, end, true)) lower = end;
        if (replacesEnd(upper, end, false)) upper = end;
    }
    result[0] = lower.value;
    result[1] = upper.value;
    result[2] = lower.flag;
    result[3] = upper.flag;
}

// Each interval of the left with each of the right, merged into a sorted disjoint union.
Matrix *intervalPair(Arith op, Matrix *a, Matrix *b, PcNode *) {
    Matrix *result = allocItvMat(checkedLength(a->nrows, b->nrows));
    uint32_t count = 0;
    for (uint32_t i = 0; i < a->nrows; i++)
        for (uint32_t j = 0; j < b->nrows; j++) {
            double interval[group];
            combine(op, a->rdata + group * i, b->rdata + group * j, interval);
            count = add_interval(count, result->rdata, interval);
        }
    result->nrows = count;
    result->length = group * count;
    return result;
}

}  // namespace vesko

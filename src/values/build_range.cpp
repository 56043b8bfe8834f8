// Even spaced vectors and intervals out of their literals, and the union of intervals.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "operators/dispatch.h"
#include "values/convert.h"

namespace vesko {

// ---- Even spaced vectors

static bool readEnd(const Matrix *m, double &x) { return extract_RS(m, x) && std::isfinite(x); }

// No tolerance: 0:0.1:0.3 has the number of elements that the arithmetic gives.
static Matrix *newRange(double first, double step, double last) {
    const double n = std::trunc((last - first) / step + 1.0);
    if (n < 1) return theEmptyMat();
    if (n == 1) return newRealScalarMat(first);
    return newRngMat(1, checkedLength(1, n < 1e18 ? static_cast<uint64_t>(n) : UINT64_MAX), first, step);
}

// A range of one element is the value of an end that somebody holds, as it stands.
static Matrix *rangeOfStepOne(Matrix *first, Matrix *last, PcNode *node) {
    double a, b;
    if (!readEnd(first, a) || !readEnd(last, b)) error_colon1(node, first, last);
    if (a > b) return theEmptyMat();
    if (std::trunc(b - a + 1.0) == 1) {
        if (first->nlinks() > 1) return first;  // one link is the pin
        if (last->nlinks() > 1) return last;
    }
    return newRange(a, 1.0, b);
}

Matrix *getTreeColon1(PcNode *node) {
    Matrix *first = pinMat(node->eval(0));
    Matrix *last = pinMat(node->eval(1));
    Matrix *range = keepResult(rangeOfStepOne(first, last, node));
    releaseMat(unpinMat());
    releaseMat(unpinMat());
    return passResult(range);
}

static Matrix *rangeOfStep(Matrix *first, Matrix *step, Matrix *last, PcNode *node) {
    double a, b, s;
    if (!readEnd(first, a) || !readEnd(last, b) || !readEnd(step, s)) error_colon2(node, first, last, step);
    if (s == 0 && a != b) error_colon_stepsize(node, step);
    if (s == 0) return newRealScalarMat(a);
    if ((b - a) * s < 0) return theEmptyMat();
    return newRange(a, s, b);
}

Matrix *getTreeColon2(PcNode *node) {
    Matrix *first = pinMat(node->eval(0));
    Matrix *step = pinMat(node->eval(1));
    Matrix *last = pinMat(node->eval(2));
    Matrix *range = rangeOfStep(first, step, last, node);
    for (int k = 0; k < 3; k++) releaseMat(unpinMat());
    return range;
}

// ---- Intervals

// The node's value says which ends belong to the interval: bit 1 the lower, bit 0 the upper.
Matrix *makeInterval(PcNode *node) {
    Matrix *lower = pinMat(node->eval(0));
    Matrix *upper = pinMat(node->eval(1));
    double a, b;
    if (!extract_RS(lower, a) || !extract_RS(upper, b) || !(a <= b)) error_interval_limit(node, lower, upper);
    releaseMat(unpinMat());
    releaseMat(unpinMat());
    return newItvMat(a, b, node->value & 2 ? 1.0 : 0.0, node->value & 1 ? 1.0 : 0.0);
}

namespace {

// One interval of a union, as it lies in the payload.
struct Group {
    double lower, upper, lower_flag, upper_flag;
};

// Ends that touch join when one of them belongs to its interval.
bool liesBefore(const Group &a, const Group &b) {
    return a.upper < b.lower || (a.upper == b.lower && a.upper_flag + b.lower_flag == 0);
}

Group spanOf(const Group &a, const Group &b) {
    Group span = a;
    if (b.lower < a.lower) {
        span.lower = b.lower;
        span.lower_flag = b.lower_flag;
    } else if (b.lower == a.lower) {
        span.lower_flag = std::max(a.lower_flag, b.lower_flag);
    }
    if (b.upper > a.upper) {
        span.upper = b.upper;
        span.upper_flag = b.upper_flag;
    } else if (b.upper == a.upper) {
        span.upper_flag = std::max(a.upper_flag, b.upper_flag);
    }
    return span;
}

}  // namespace

uint32_t add_interval(uint32_t count, double *array, const double *interval) {
    auto *groups = reinterpret_cast<Group *>(array);
    Group added;
    memcpy(&added, interval, sizeof added);
    uint32_t from = 0;
    while (from < count && liesBefore(groups[from], added)) from++;
    uint32_t to = from;  // groups from .. to - 1 are absorbed
    for (; to < count && !liesBefore(added, groups[to]); to++) added = spanOf(added, groups[to]);
    memmove(groups + from + 1, groups + to, (count - to) * sizeof(Group));
    groups[from] = added;
    return count - (to - from) + 1;
}

}  // namespace vesko

// Index values: which kinds can index, the bounds, and the forms in which walks and built-ins use them.
#include <cassert>
#include <cmath>

#include "engine/errors.h"
#include "operators/index.h"
#include "operators/index_walk.h"
#include "values/elements.h"

namespace vesko {

namespace {

// What an index must satisfy. A read has an upper bound; a store has none but what an integer can say.
struct IndexRule {
    uint32_t bound;  // what a whole row or column spans
    bool store;
    PcNode *node;

    double limit() const { return store ? INT32_MAX : bound; }
    // `value` is the index itself when it is a single one, else null.
    [[noreturn]] void refuse(const Matrix *value, double i) const {
        if (store) error_index(node, nullptr, i);
        error_index_bound(node, value, truncToInt(i), bound);
    }
};

// NaN is in no range.
bool within(double i, double limit) { return i >= 1 && i <= limit; }

Matrix *checkSingle(Matrix *value, double i, const IndexRule &rule, uint32_t &max) {
    if (!within(i, rule.limit())) rule.refuse(value, i);
    max = static_cast<uint32_t>(i);
    return value;
}

Matrix *checkIntegers(Matrix *value, const IndexRule &rule, uint32_t &max) {
    const int32_t *at = value->ints();
    const double limit = rule.limit();
    int32_t largest = 0;
    for (uint32_t k = 0; k < value->length; k++) {
        if (!within(at[k], limit)) rule.refuse(nullptr, at[k]);
        if (at[k] > largest) largest = at[k];
    }
    max = static_cast<uint32_t>(largest);
    return value;
}

// Truncated ends speak for all, since the elements between lie between.
Matrix *checkSpaced(Matrix *value, const IndexRule &rule, uint32_t &max) {
    const double first = value->first(), last = first + (value->length - 1) * value->step();
    if (!within(std::trunc(first), rule.limit())) rule.refuse(nullptr, first);
    if (!within(std::trunc(last), rule.limit())) rule.refuse(nullptr, last);
    max = static_cast<uint32_t>(first > last ? first : last);
    return value;
}

Matrix *asIntegers(const Matrix *value) {
    Matrix *integers = newIntMat(value->nrows, value->ncols);
    copyElements(integers->ints(), value, 0, value->length);
    return integers;
}

Matrix *wholeRange(uint32_t bound, uint32_t &max) {
    max = bound;
    if (bound == 0) return theEmptyMat();
    return bound == 1 ? theTrueMat() : newRngMat(bound, 1, 1.0, 1.0);
}

Matrix *checkIndex(Matrix *value, const IndexRule &rule, uint32_t &max) {
    switch (value->l2type) {
        case L2::RS: return checkSingle(value, value->rdata[0], rule, max);
        case L2::IS: return checkSingle(value, value->ints()[0], rule, max);
        case L2::IM: return checkIntegers(value, rule, max);
        case L2::RNG: return checkSpaced(value, rule, max);
        case L2::RM: return checkIntegers(asIntegers(value), rule, max);
        case L2::BY:
            if (value->length == 1) return checkSingle(value, value->bytes()[0], rule, max);
            return checkIntegers(asIntegers(value), rule, max);
        case L2::BIGINT:
        case L2::MPF: return checkIndex(convToIntMat(value), rule, max);
        case L2::RNG0: return wholeRange(rule.bound, max);
        case L2::NUL: max = 0; return theEmptyMat();
        default: error_index(rule.node, value, 0);
    }
}

uint32_t single(Matrix *value, const IndexRule &rule) {
    uint32_t max;
    double i;
    if (value->l2type == L2::BI || !extract_RS(value, i)) error_index(rule.node, value, 0);
    checkSingle(value, i, rule, max);
    return max;
}

}  // namespace

Matrix *chkIndxMat(Matrix *value, uint32_t bound, uint32_t &max, PcNode *node) {
    return checkIndex(value, {bound, false, node}, max);
}

Matrix *asgnIndxMat(Matrix *value, uint32_t bound, uint32_t &max, PcNode *node) {
    return checkIndex(value, {bound, true, node}, max);
}

Matrix *chkEvalIndxMat(PcNode *node, uint32_t bound, uint32_t &max) {
    Matrix *value = node->exec(node);
    Matrix *index = chkIndxMat(value, bound, max, node);
    if (index != value) releaseMat(value);
    return index;
}

Matrix *chkEvalDiagIndxMat(PcNode *node, uint32_t n, uint32_t &max) { return chkEvalIndxMat(node, n, max); }

uint32_t singleIndex(Matrix *value, PcNode *node) { return single(value, {0, true, node}); }

uint32_t chkSingleIndex(Matrix *value, uint32_t bound, PcNode *node) {
    return single(value, {bound, false, node});
}

// ---- Readers of checked indices

static uint32_t extract_index_IN(const Matrix *index, uint32_t k) {
    return static_cast<uint32_t>(index->ints()[k]) - 1;
}
static uint32_t extract_index_RN(const Matrix *index, uint32_t k) {
    return SpacedIndices{index->first(), index->step()}(k);
}
static uint32_t extract_index_IS(const Matrix *index, uint32_t) { return extract_index_IN(index, 0); }
static uint32_t extract_index_RM(const Matrix *index, uint32_t k) {
    return static_cast<uint32_t>(index->rdata[k]) - 1;
}
static uint32_t extract_index_RS(const Matrix *index, uint32_t) { return extract_index_RM(index, 0); }
static uint32_t extract_index_BY(const Matrix *index, uint32_t k) { return index->bytes()[k] - 1u; }

const IndexFn get_index_fun[n_index_kinds] = {extract_index_IN, extract_index_RN, extract_index_IS,
                                              extract_index_RM, extract_index_RS, extract_index_BY};

uint32_t getIndexS(const Matrix *m) {
    assert(index(m->l2type) < n_index_kinds);
    return get_index_fun[index(m->l2type)](m, 0);
}

IndexRun indexRun(const Matrix *checked) {
    if (checked->l2type == L2::NUL) return {0, nullptr, 0, 0};
    if (checked->l2type == L2::RNG)
        return IndexRun::spaced(checked->length, checked->first(), checked->step());
    if (checked->length == 1) return IndexRun::spaced(1, getIndexS(checked) + 1.0, 0);
    return {checked->length, checked->ints(), 0, 0};
}

IndexRun asgnIndexRun(const Matrix *checked) {
    IndexRun run = indexRun(checked);
    if (!run.integers) {
        run.first = truncToInt(run.first);
        run.step = truncToInt(run.step);
    }
    return run;
}

}  // namespace vesko

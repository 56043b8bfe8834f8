// The order of values.
#include "builtins/value_order.h"

#include <cstring>

#include "builtins/arguments.h"
#include "engine/errors.h"
#include "operators/dispatch.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {

static int32_t signOf(double x) { return (x > 0) - (x < 0); }

// Extended numbers are compared exactly, by the operators.
int32_t mat_num_compare(const Matrix *a, const Matrix *b) {
    double x, y;
    const auto plain = [](const Matrix *m) { return m->l2type != L2::BIGINT && m->l2type != L2::MPF; };
    if (plain(a) && plain(b) && extract_RS(a, x) && extract_RS(b, y)) return (x > y) - (x < y);
    Matrix *m = const_cast<Matrix *>(a), *n = const_cast<Matrix *>(b);
    return lesfun[pairIndex(n, m)](n, m, nullptr) - lesfun[pairIndex(m, n)](m, n, nullptr);
}

int32_t mat_str_compare(const Matrix *a, const Matrix *b) { return std::strcmp(a->text(), b->text()); }

static bool isNumber(const Matrix *m) { return isRealLike(m->l2type) && m->length == 1; }

int32_t mat_compare(const Matrix *a, const Matrix *b, const char *builtin, PcNode *node) {
    if (a->l1type == L1::RS && b->l1type == L1::RS) return (*a->rdata > *b->rdata) - (*a->rdata < *b->rdata);
    const bool a_number = isNumber(a), b_number = isNumber(b);
    if (a_number && b_number) return mat_num_compare(a, b);
    if (!(a_number || a->l2type == L2::TX) || !(b_number || b->l2type == L2::TX))
        refuseArgument(node, builtin);
    return a_number ? -1 : b_number ? 1 : mat_str_compare(a, b);
}

int32_t compare_mats_by_bf(Bfunc *bf, Matrix *a, Matrix *b, PcNode *node) {
    Matrix *args = makeBiMatVec(a, b);
    Matrix *result = keepResult(callBf(bf, args, node));
    releaseMat(args);
    double order;
    if (!extract_RS(result, order)) error_domain_check(node, 0);
    releaseMat(passResult(result));
    return signOf(order);
}

}  // namespace vesko

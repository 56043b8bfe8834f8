// Other dimensions for the same elements.
#include "members/shape.h"

#include <algorithm>

#include "engine/assign.h"
#include "engine/errors.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

static uint32_t readSize(const Matrix *size, int32_t argument, PcNode *node) {
    int32_t n;
    if (!extract_integer(size, n) || n < 1) error_bf_argk_domain(node, "reshape", argument);
    return static_cast<uint32_t>(n);
}

Shape readShape(Matrix *const *sizes, uint32_t n, uint32_t length, PcNode *node) {
    const uint32_t rows = readSize(sizes[0], 1, node);
    if (n == 1) {
        if (rows != length) error_bf_argk_domain(node, "reshape", 1);
        return {rows, 1};
    }
    const uint32_t cols = readSize(sizes[1], 2, node);
    const uint64_t product = uint64_t{rows} * cols;
    if (product != length)
        error_bf_args_len_nomatch(node, "reshape", static_cast<int32_t>(length),
                                  static_cast<int32_t>(std::min<uint64_t>(product, INT32_MAX)));
    return {rows, cols};
}

void setShape(Matrix *m, Shape shape) {
    m->nrows = shape.rows;
    m->ncols = shape.cols;
    if (!isComplex(m->l2type)) return;
    for (unsigned part = 0; part < 2; part++) setShape(unshare(m->entries()[part]), shape);
}

}  // namespace vesko

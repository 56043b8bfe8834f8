// reverse, rowreverse and columnreverse: elements, rows or columns in the opposite order.
#include "builtins/reverse.h"

#include <algorithm>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "operators/families.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

namespace {

template <class T>
void reverseElements(T *a, const Matrix *m, Reversal what) {
    T *end = a + m->length;
    if (what == Reversal::Elements) return std::reverse(a, end);
    if (what == Reversal::Columns) {
        for (T *row = a; row < end; row += m->ncols) std::reverse(row, row + m->ncols);
        return;
    }
    for (uint32_t i = 0; i < m->nrows / 2; i++)
        std::swap_ranges(a + size_t{i} * m->ncols, a + size_t{i + 1} * m->ncols,
                         end - size_t{i + 1} * m->ncols);
}

Matrix *reverseRange(Matrix *m, Reversal what) {
    const bool elements = what == Reversal::Elements;
    const uint32_t lines = what == Reversal::Rows ? m->nrows : m->ncols;
    if (!elements && lines == 1) return m;
    if (elements || lines == m->length)
        return newRngMat(m->nrows, m->ncols, m->first() + (m->length - 1) * m->step(), -m->step());
    Matrix *reals = convToDb(m);
    reverseOwn(reals, what);
    return reals;
}

Matrix *reverseList(const Matrix *list) {
    Matrix *result = list->l2type == L2::LS ? newListMat(list->length) : newVListMat(list->length);
    for (uint32_t k = list->length; k-- > 0;) addListEntry(result, list->entries()[k]);
    return result;
}

bool hasStructure(L2 t) { return isRealLike(t) && hasPlainElements(t) && t >= L2::UPPER; }

}  // namespace

void reverseOwn(Matrix *m, Reversal what) {
    switch (m->l2type) {
        case L2::IS:
        case L2::IM: return reverseElements(m->ints(), m, what);
        case L2::BY:
        case L2::BI:
        case L2::TX: return reverseElements(m->bytes(), m, what);
        case L2::CS:
        case L2::CM:
            reverseElements(m->re()->rdata, m, what);
            return reverseElements(m->im()->rdata, m, what);
        default: return reverseElements(m->rdata, m, what);
    }
}

Matrix *reversed(const char *builtin, Matrix *m, Reversal what, PcNode *node) {
    const bool elements = what == Reversal::Elements;
    if (m->l2type == L2::NUL) return m;
    if (isList(m->l2type) && elements) return m->length ? reverseList(m) : m;
    if (m->l2type == L2::RNG) return reverseRange(m, what);
    const bool text = m->l2type == L2::TX && elements;
    if (!text && !isComplex(m->l2type) && !hasPlainElements(m->l2type)) refuseArgument(node, builtin);
    Matrix *copy = hasStructure(m->l2type) ? convToDb(m) : cloneMatrix(m);
    reverseOwn(copy, what);
    return copy;
}

Matrix *reverse_bf(Matrix *x, Matrix **, PcNode *node) {
    return reversed("reverse", x, Reversal::Elements, node);
}
Matrix *rowreverse_bf(Matrix *x, Matrix **, PcNode *node) {
    return reversed("rowreverse", x, Reversal::Rows, node);
}
Matrix *columnreverse_bf(Matrix *x, Matrix **, PcNode *node) {
    return reversed("columnreverse", x, Reversal::Columns, node);
}

}  // namespace vesko

// Multidimensional values: the operators run over their elements as one column, and the result takes the
// extents.
#include <cassert>
#include <cstring>

#include "engine/errors.h"
#include "operators/ladder.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {

static bool isMultidim(const Matrix *m) { return m->l2type == L2::RMDM || m->l2type == L2::CMDM; }

static Matrix *columnOf(const Matrix *m) {
    const uint32_t n = m->length;
    if (m->l2type == L2::RMDM) {
        Matrix *column = allocRealMat(n, n, 1);
        memcpy(column->rdata, m->rdata, n * sizeof(double));
        return column;
    }
    Matrix *column = allocCompMat(n, n, 1);
    memcpy(column->re()->rdata, m->rdata, n * sizeof(double));
    memcpy(column->im()->rdata, m->rdata + n, n * sizeof(double));
    return column;
}

static Vector *copyOfExtents(const Matrix *m) {
    const Vector *extents = static_cast<Vector *>(m->vdata);
    Vector *copy = newVector(extents->size);
    for (uint32_t k = 0; k < extents->size; k++) addElement(copy, extents->data[k]);
    return copy;
}

// The elements of a real or complex column, or one value for all elements, in the extents of `shape`.
static Matrix *inExtentsOf(const Matrix *shape, const Matrix *values) {
    const bool complex = isComplex(values->l2type);
    assert(complex || values->l1type == L1::RM || values->l1type == L1::RS);
    const uint32_t n = shape->length, stride = values->length == 1 ? 0 : 1;
    Matrix *result = complex ? newCMDM_Mat(n, copyOfExtents(shape)) : newRMDM_Mat(n, copyOfExtents(shape));
    const double *re = complex ? values->re()->rdata : values->rdata;
    for (uint32_t k = 0; k < n; k++) result->rdata[k] = re[k * stride];
    if (!complex) return result;
    const double *im = values->im()->rdata;
    for (uint32_t k = 0; k < n; k++) result->rdata[n + k] = im[k * stride];
    return result;
}

static bool goesByElements(Arith op) { return op != Arith::Mpy && op != Arith::Dvd && op != Arith::Bsl; }

Matrix *multidimPair(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const bool left = isMultidim(a), right = isMultidim(b);
    if (left && right) {
        if (!goesByElements(op))
            return op == Arith::Dvd ? noQuotient(op, a, b, node) : undefined(op, a, b, node);
        if (!sameDims(a, b)) error_size_nomatch(node);
    } else if ((left ? b : a)->length != 1) {
        error_undef_opr2(node);
    }
    Matrix *x = left ? columnOf(a) : a;
    Matrix *y = right ? columnOf(b) : b;
    Matrix *values = applyMade(op, x, y, a, b, node);
    Matrix *result = inExtentsOf(left ? a : b, values);
    releaseMat(values);
    return result;
}

}  // namespace vesko

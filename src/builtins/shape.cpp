// Built-ins that tell the sizes of a value, and give its elements another order or other dimensions.
#include <algorithm>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "frontend/symbols.h"
#include "members/auto_fields.h"
#include "members/kinds.h"
#include "members/shape.h"
#include "operators/dispatch.h"
#include "values/convert.h"

namespace vesko {

// ---- Sizes: those that the value answers itself

static Matrix *fieldOf(Matrix *m, uint32_t field, const char *name, PcNode *node) {
    Matrix *value = readAutoField(m, field, node);
    if (!value) refuseArgument(node, name);
    return value;
}

Matrix *size_bf(Matrix *args, Matrix **, PcNode *node) {
    return fieldOf(args, FIELD_INDEX_DIMS, "size", node);
}
Matrix *length_bf(Matrix *args, Matrix **, PcNode *node) {
    return fieldOf(args, FIELD_INDEX_LENGTH, "length", node);
}
Matrix *nrows_bf(Matrix *args, Matrix **, PcNode *node) {
    return fieldOf(args, FIELD_INDEX_NROWS, "nrows", node);
}
Matrix *ncols_bf(Matrix *args, Matrix **, PcNode *node) {
    return fieldOf(args, FIELD_INDEX_NCOLUMNS, "ncols", node);
}

// ---- Elements in other places

Matrix *trans_bf(Matrix *args, Matrix **, PcNode *node) { return getMatTrs(args, node); }

// A copy to give other dimensions to. The elements of a multidimensional value become those of a matrix.
static Matrix *flatCopy(Matrix *m, PcNode *node) {
    if (kinds::dense.has(m->l2type)) return cloneMatrix(m);
    const uint32_t n = m->length;
    switch (m->l2type) {
        case L2::RMDM: {
            Matrix *copy = allocRealMat(n, n, 1);
            std::copy_n(m->rdata, n, copy->rdata);
            return copy;
        }
        case L2::CMDM: {
            Matrix *copy = allocCompMat(n, n, 1);
            std::copy_n(m->rdata, n, copy->re()->rdata);
            std::copy_n(m->rdata + n, n, copy->im()->rdata);
            return copy;
        }
        default: error_bf_argk_domain(node, "reshape", 0);
    }
}

// Sizes as one or two numbers, or as a pair in one value.
Matrix *reshape_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 2, 3, node, "reshape");
    const uint32_t n = args->length;
    Matrix *const *values = args->entries();
    double rows, cols;
    Shape shape;
    if (n == 2 && extract_2_reals(values[1], rows, cols)) {
        Matrix *const sizes[] = {newRealScalarMat(rows), newRealScalarMat(cols)};
        shape = readShape(sizes, 2, values[0]->length, node);
        releaseMat(sizes[0]);
        releaseMat(sizes[1]);
    } else {
        shape = readShape(values + 1, n - 1, values[0]->length, node);
    }
    Matrix *m = flatCopy(values[0], node);
    setShape(m, shape);
    return m;
}

}  // namespace vesko

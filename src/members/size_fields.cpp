// Automatic fields that tell of sizes and of functions.
#include "builtins/bfunc.h"
#include "engine/frame.h"
#include "frontend/symbols.h"
#include "members/auto_fields.h"
#include "members/kinds.h"
#include "values/containers.h"
#include "values/elements.h"

namespace vesko {

// ---- Sizes

Matrix *mat_field_length(Matrix *m, PcNode *) { return newCount(m->length); }
Matrix *mat_field_length_set(Matrix *m, PcNode *) { return newCount(m->table()->count()); }
Matrix *mat_field_length_que(Matrix *m, PcNode *) { return newCount(static_cast<xqueue *>(m->vdata)->count); }
Matrix *mat_field_height(Matrix *m, PcNode *) { return newCount(static_cast<xstack *>(m->vdata)->count); }
Matrix *mat_field_nrows(Matrix *m, PcNode *) { return newCount(m->nrows); }
Matrix *mat_field_ncolumns(Matrix *m, PcNode *) { return newCount(m->ncols); }

Matrix *mat_field_size(Matrix *m, PcNode *) { return newCounts({m->nrows, m->ncols}); }

Matrix *mat_field_size_md(Matrix *m, PcNode *) {
    const auto *extents = static_cast<const Vector *>(m->vdata);
    Matrix *size = newIntMat(1, extents->size);
    for (uint32_t k = 0; k < extents->size; k++) size->ints()[k] = static_cast<int32_t>(extents->numberAt(k));
    return size;
}

// ---- Functions

Matrix *mat_field_name_bf(Matrix *m, PcNode *) { return newStrMatCopy(getSymbolName(m->builtin()->name)); }
Matrix *mat_field_nargs_bf(Matrix *m, PcNode *) { return newCount(m->builtin()->nargs); }
Matrix *mat_field_nargs_uf(Matrix *m, PcNode *) { return newCount(m->func()->data->nargs); }

// ---- Values as terms: each is a term of itself alone

static bool isScalar(const Matrix *m) {
    constexpr KindSet of_one_element = kinds::bits | kinds::extended;
    return kinds::scalars.has(m->l2type) || (m->length == 1 && of_one_element.has(m->l2type));
}

Matrix *mat_field_operator(Matrix *m, PcNode *) { return newStrMatCopy(isScalar(m) ? "scalar" : "nonexpr"); }
Matrix *mat_field_nops(Matrix *, PcNode *) { return newCount(1); }
Matrix *mat_field_operands(Matrix *m, PcNode *) { return m; }

}  // namespace vesko

// The uniform view of real-like matrices: one reader of entries a kind, by flat index and by row and column.
#include "engine/errors.h"
#include "operators/index.h"

namespace vesko {

namespace {

double INT_entry(const Matrix *m, uint32_t i) { return m->ints()[i]; }
double IS_entry(const Matrix *m, uint32_t) { return m->ints()[0]; }
double RANGE_entry(const Matrix *m, uint32_t i) { return m->first() + i * m->step(); }
double RM_entry(const Matrix *m, uint32_t i) { return m->rdata[i]; }
double RS_entry(const Matrix *m, uint32_t) { return m->rdata[0]; }
double BYTE_entry(const Matrix *m, uint32_t i) { return m->bytes()[i]; }
constexpr EntryFn BINARY_entry = BYTE_entry;
double BAND_entry(const Matrix *, uint32_t) { error_not_built(nullptr, "band matrices"); }
double SPARSE_entry(const Matrix *, uint32_t) { error_not_built(nullptr, "sparse matrices"); }

// Dense kinds lie in row-major order.
template <EntryFn entry>
double entry2(const Matrix *m, uint32_t row, uint32_t col) {
    return entry(m, row * m->ncols + col);
}

}  // namespace

const EntryFn mat_entry_fun[n_entry_kinds] = {
    INT_entry, RANGE_entry, IS_entry, RM_entry,   RS_entry,     BYTE_entry, BINARY_entry,
    RM_entry,  RM_entry,    RM_entry, BAND_entry, SPARSE_entry, RM_entry,
};

const Entry2Fn mat_entry2_fun[n_entry_kinds] = {
    entry2<INT_entry>,  entry2<RANGE_entry>,  entry2<IS_entry>, entry2<RM_entry>, entry2<RS_entry>,
    entry2<BYTE_entry>, entry2<BINARY_entry>, entry2<RM_entry>, entry2<RM_entry>, entry2<RM_entry>,
    entry2<BAND_entry>, entry2<SPARSE_entry>, entry2<RM_entry>,
};

}  // namespace vesko

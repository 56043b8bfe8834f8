// The walk over the elements that an index form touches. A form is checked once, before; the walk itself
// tests nothing, and every combination of form and index kind has a loop of its own.
#pragma once

#include <cstdint>

#include "values/convert.h"
#include "values/matrix.h"

namespace vesko {

struct IntegerIndices {
    const int32_t *at;
    uint32_t operator()(uint32_t k) const { return static_cast<uint32_t>(at[k]) - 1; }
};
struct SpacedIndices {
    double first, step;
    uint32_t operator()(uint32_t k) const { return static_cast<uint32_t>(first + k * step - 1.0); }
};

// A checked index, ready to walk. A single index is a spaced one with step 0, so that it can pair with many.
struct IndexRun {
    uint32_t length;
    const int32_t *integers;  // null for a spaced index
    double first, step;

    static IndexRun spaced(uint32_t length, double first, double step) {
        return {length, nullptr, first, step};
    }

    template <class F>
    void visit(F &&f) const {
        if (integers)
            f(IntegerIndices{integers});
        else
            f(SpacedIndices{first, step});
    }
};

IndexRun indexRun(const Matrix *checked);      // what chkIndxMat or asgnIndxMat returned
IndexRun asgnIndexRun(const Matrix *checked);  // a store truncates first and step of a spaced index

enum class IndexForm : uint8_t {
    Flat,   // m[i]: row-major places
    Block,  // m[i, j]: every row with every column
    Pairs,  // m[i; j]: the k-th row with the k-th column
};

// The elements that an index form touches, in the order of the result or of the stored value.
struct IndexedPlaces {
    IndexForm form;
    IndexRun rows;  // the flat indices of form Flat
    IndexRun cols;
    uint32_t max_row, max_col;  // the largest ones; max_row is the largest flat index of form Flat

    uint32_t count() const {
        if (form == IndexForm::Flat) return rows.length;
        if (form == IndexForm::Block) return checkedLength(rows.length, cols.length);
        return rows.length == 1 ? cols.length : rows.length;
    }

    // f(k, place) for the k-th element; `ncols` is the width of the matrix.
    template <class F>
    void walk(uint32_t ncols, F &&f) const {
        switch (form) {
            case IndexForm::Flat: return walkFlat(f);
            case IndexForm::Block: return walkBlock(ncols, f);
            case IndexForm::Pairs: return walkPairs(ncols, f);
        }
    }

private:
    template <class F>
    void walkFlat(F &f) const {
        rows.visit([&, n = rows.length](auto i) {
            for (uint32_t k = 0; k < n; k++) f(k, i(k));
        });
    }
    template <class F>
    void walkBlock(uint32_t ncols, F &f) const {
        rows.visit([&, nr = rows.length, nc = cols.length](auto i) {
            cols.visit([&](auto j) {
                uint32_t k = 0;
                for (uint32_t r = 0; r < nr; r++) {
                    const uint32_t start = i(r) * ncols;
                    for (uint32_t c = 0; c < nc; c++) f(k++, start + j(c));
                }
            });
        });
    }
    template <class F>
    void walkPairs(uint32_t ncols, F &f) const {
        rows.visit([&, n = count()](auto i) {
            cols.visit([&](auto j) {
                for (uint32_t k = 0; k < n; k++) f(k, i(k) * ncols + j(k));
            });
        });
    }
};

}  // namespace vesko

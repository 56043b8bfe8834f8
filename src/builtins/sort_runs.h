// The stretches of a matrix that are sorted each by itself: all elements, each row, or each column.
#pragma once

#include <cstdint>

#include "values/matrix.h"

namespace vesko {

enum class Wise : int32_t { Whole = 0, Row = 'r', Column = 'c' };

struct Run {
    uint32_t start, stride, count;
    uint32_t at(uint32_t k) const { return start + k * stride; }
};

template <class F>
void eachRun(const Matrix *m, Wise wise, F f) {
    switch (wise) {
        case Wise::Whole: return f(Run{0, 1, m->length});
        case Wise::Row:
            for (uint32_t i = 0; i < m->nrows; i++) f(Run{i * m->ncols, 1, m->ncols});
            return;
        case Wise::Column:
            for (uint32_t j = 0; j < m->ncols; j++) f(Run{j, m->ncols, m->nrows});
            return;
    }
}

}  // namespace vesko

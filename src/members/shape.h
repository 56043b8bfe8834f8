// Other dimensions for the same elements.
#pragma once

#include <cstdint>

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

struct Shape {
    uint32_t rows, cols;
};

// The shape that one size (a column) or two sizes name for a value of that many elements; errors are those of
// `reshape`.
Shape readShape(Matrix *const *sizes, uint32_t n, uint32_t length, PcNode *node);
void setShape(Matrix *m, Shape shape);  // of a dense kind without other holders

}  // namespace vesko

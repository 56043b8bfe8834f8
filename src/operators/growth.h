// Growth in place of writing: matrices, strings and lists that get larger in the slot that holds them.
//
// The value in the slot must have no other holder. Growth may put another record into the slot; the slot's
// value is returned. A length that no record can hold, or memory that is refused, ends the command with the
// value as it was.
#pragma once

#include <cstddef>

#include "values/matrix.h"

namespace vesko {

// Dense real, integer, byte, binary or complex: at least as many rows and columns as now; new elements are 0.
// More rows, or a longer row vector, need no copy as long as the buffer has room, and big buffers grow by
// doubling.
Matrix *growMat(Matrix *&slot, uint32_t rows, uint32_t cols);

// Zeros of a dense kind; a kind of none of these gives reals.
Matrix *newZerosOfKind(L2 kind, uint32_t rows, uint32_t cols);

Matrix *txmAddLen(Matrix *&slot, uint32_t n);    // a string of n characters, new ones blank
Matrix *vlGetNewLen(Matrix *&slot, uint32_t n);  // a VL of n entries, new ones empty

// For values that the caller alone works on: temporaries, of which the old record is released.
Matrix *rmGetNewRow(Matrix *m, uint32_t rows);
Matrix *rmGetNewCol(Matrix *m, uint32_t cols);
Matrix *imGetNewRow(Matrix *m, uint32_t rows);
Matrix *strmat_extend_cap(Matrix *m, size_t size_with_nul);  // the text and its length stay

}  // namespace vesko

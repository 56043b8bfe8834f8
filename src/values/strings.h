// Room for strings that grow.
#pragma once

#include "values/matrix.h"

namespace vesko {

// The string in `slot`, lengthened to n characters, the new ones blanks: in its own buffer if nobody else
// holds it and the buffer has room, else in a new record that takes its place in the slot. Returns the record
// now in the slot. `n` must not be below the length; a slot that is not the holder of a link is not allowed.
Matrix *txmAddLen(Matrix *&slot, Matrix *m, uint64_t n);

// For writers of strings: a temporary string with room for `size` bytes, terminator included, that begins
// with the characters of `m`. `m` itself if it has the room; otherwise `m` is released. The length is that of
// `m`.
Matrix *strmat_extend_cap(Matrix *m, uint64_t size);

// The characters of a, then those of b; a new string.
Matrix *textJoin(const Matrix *a, const Matrix *b);

}  // namespace vesko

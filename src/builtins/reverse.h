// Elements, rows or columns in the opposite order.
#pragma once

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

enum class Reversal { Elements, Rows, Columns };

// A new value; the value itself if it is empty. Errors are those of the built-in.
Matrix *reversed(const char *builtin, Matrix *m, Reversal what, PcNode *node);

// In place: m is of a dense kind, complex or a string, and nobody else's. Strings have elements only.
void reverseOwn(Matrix *m, Reversal what);

}  // namespace vesko

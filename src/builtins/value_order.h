// The order of values, by which lists are sorted: negative, 0 or positive.
#pragma once

#include <cstdint>

#include "builtins/bfunc.h"
#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

// What values are compared by. A field index stands for itself.
namespace compare_by {
constexpr int32_t comparator = -1, key = -2, builtin_comparator = -3, builtin_key = -4, nature = -5;
}
int32_t mat_num_compare(const Matrix *a, const Matrix *b);  // numbers; a NaN is neither before nor behind
int32_t mat_str_compare(const Matrix *a, const Matrix *b);  // strings
// Numbers and strings: numbers come first. Other kinds have no order: the error names the built-in.
int32_t mat_compare(const Matrix *a, const Matrix *b, const char *builtin, PcNode *node);
// What a built-in of two inputs tells of them.
int32_t compare_mats_by_bf(Bfunc *bf, Matrix *a, Matrix *b, PcNode *node);

}  // namespace vesko

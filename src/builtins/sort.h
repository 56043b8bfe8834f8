// sort and its row and column forms. Their parameters are three that are given, and for each a working entry,
// an integer scalar, that tells what it means.
#pragma once

#include "builtins/bfunc.h"
#include "builtins/sort_runs.h"

namespace vesko {

enum SortParm {
    parm_order,
    parm_compare,
    parm_wise,
    parm_order_option,
    parm_compare_option,
    parm_wise_option
};

Bfunc *sort_bf_maintainer(BfOperation op, Bfunc *bf, Vector *values, Matrix *value, uint32_t field);
Bfunc *rowsort_bf_maintainer(BfOperation op, Bfunc *bf, Vector *values, Matrix *value, uint32_t field);
Bfunc *columnsort_bf_maintainer(BfOperation op, Bfunc *bf, Vector *values, Matrix *value, uint32_t field);

// Increasing: the value itself if there is nothing to sort, or sorted where it lies if nobody holds it; else
// a copy. Errors are those of the built-in.
Matrix *sortNaturally(const char *builtin, Matrix *m, Wise wise, PcNode *node);

}  // namespace vesko

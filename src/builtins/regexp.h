// The built-ins `regexp` and `regsub` as values.
#pragma once

#include "builtins/bfunc.h"

namespace vesko {

Bfunc *regexp_bf_maintainer(BfOperation op, Bfunc *bf, Vector *texts, Matrix *value, uint32_t field);
Bfunc *regsub_bf_maintainer(BfOperation op, Bfunc *bf, Vector *texts, Matrix *value, uint32_t field);

// The workers that the option g selects.
Matrix *reggexp_bf(Matrix *target, Matrix **parms, PcNode *node);
Matrix *reggsub_bf(Matrix *target, Matrix **parms, PcNode *node);

// The function that a literal stands for, a temporary; null if the pattern does not compile. The list has the
// pattern and the options, and for a `regsub` the replacement between them.
Matrix *newPatternFunction(Matrix *texts);

// The compiled pattern of a `regexp` value, or a compiled pattern itself; null if the value is neither.
const Matrix *patternOf(const Matrix *value);

}  // namespace vesko

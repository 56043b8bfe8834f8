// Functions that are made of other functions: the operators on functions make them.
//
// A generated function is a built-in of one input, x, that keeps its operands as op1 and op2 and applies them
// when it is called. An operand that is no function is applied as a product: 2 gives 2 * x.
#pragma once

#include <initializer_list>

#include "builtins/bfunc.h"

namespace vesko {

// The constructors, one of each kind. Kinds with one operand leave op2 empty.
#define FUNCTION(constructor, name, worker)                        \
    Matrix *constructor(Matrix *op1, Matrix *op2 = theEmptyMat()); \
    Matrix *worker(Matrix *x, Matrix **operands, PcNode *node);
#include "builtins/function_algebra.def"
#undef FUNCTION

// A built-in that cannot be spawned; `inputs` is shared. The operands are its parameters op1, op2, ...
Matrix *newGeneratedBf(const char *name, BfWorker worker, BfInput *inputs,
                       std::initializer_list<Matrix *> operands);
// Chains of inputs are kept for good, so equal ones are made once.
BfInput *sharedInput(uint32_t symbol, BfInput *next);

// A matrix literal with functions among its blocks: a row or a column of functions, or a matrix if there are
// rows of functions among the blocks. Takes the list over.
Matrix *joinFunctions(Matrix *blocks);

}  // namespace vesko

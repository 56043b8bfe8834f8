// Partial functions: a function with some of its arguments fixed and holes for the others.
#pragma once

#include "values/matrix.h"

namespace vesko {

// A built-in value whose inputs are the holes. `args` is the list of all arguments, in which the holes stand
// for anything; `holes` has their positions, from 0. The three are linked.
Matrix *newUfPartialMat(Matrix *f, Matrix *args, Matrix *holes);
Matrix *newBfPartialMat(Matrix *f, Matrix *args, Matrix *holes);

}  // namespace vesko

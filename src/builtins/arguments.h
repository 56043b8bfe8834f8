// What built-ins share in reading their arguments: one arrives as itself, several as a list.
#pragma once

#include "builtins/bfunc.h"

namespace vesko {

// "argument not in domain", with the source text of the call.
[[noreturn]] void refuseArgument(PcNode *node, const char *builtin);

uint32_t argCount(const Matrix *args);    // entries of a list, 0 for no argument, else 1
Matrix *argAt(Matrix *args, uint32_t k);  // borrowed
void refuseAnyArgument(const Matrix *args, PcNode *node, const char *builtin);  // for those that take none

// A pair of real numbers: two arguments, or one numeric matrix of two elements. Another count, or an argument
// that is no number, is refused under the name of the built-in.
struct RealPair {
    double first, second;
    bool integers;  // both of an integer kind
};
RealPair pairOfReals(Matrix *args, PcNode *node, const char *builtin);

// ---- Sizes of new matrices: one number for a column, rows and columns, a matrix of sizes, and a domain
// behind them that names the kind of the elements.

// 'Z', 'B', 'M', 'D', 'L', 'S', 'C' or 'T' by the name of a domain, '0' for all others.
char get_mat_val_domain_type(const Matrix *bf);

// Sizes that are not whole, finite and at least 1 are refused. With allow_vector there may be three and more,
// the answer is false and the caller goes on with extract_dim_vec. Without a domain the code is 'D'.
bool extractMatDims(Matrix *dims, uint32_t &rows, uint32_t &columns, bool allow_vector, PcNode *node,
                    char &domain_code);
Vector *extract_dim_vec(Matrix *dims, uint32_t &length, PcNode *node);  // the extents, and their product
// A real matrix of two or more dimensions, its elements undefined.
Matrix *allocateNumericalMat(Matrix *dims, PcNode *node);

}  // namespace vesko

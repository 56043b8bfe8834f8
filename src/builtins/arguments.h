// What built-ins share in reading their arguments: one arrives as itself, several as a list.
#pragma once

#include "builtins/bfunc.h"
#include "members/kinds.h"

namespace vesko {

uint32_t argCount(const Matrix *args);    // entries of a list, 0 for no argument, else 1
Matrix *argAt(Matrix *args, uint32_t k);  // borrowed

// ---- Demands: what does not meet them is refused under the name of the built-in. Arguments count from 0.

// "argument not in domain", with the source text of the call.
[[noreturn]] void refuseArgument(PcNode *node, const char *builtin);
void demandCount(const Matrix *args, uint32_t n, PcNode *node, const char *builtin);  // of two up, a list
void demandCount(const Matrix *args, uint32_t least, uint32_t most, PcNode *node, const char *builtin);
void demandKind(Matrix *args, uint32_t k, L2 kind, PcNode *node, const char *builtin);
double realArg(Matrix *args, uint32_t k, PcNode *node, const char *builtin);  // a number
// A numeric value of one of the kinds. Structured and extended ones are told of as not built.
void demandKinds(const Matrix *m, KindSet known, PcNode *node, const char *builtin);
void demandEqualLengths(const Matrix *a, const Matrix *b, PcNode *node, const char *builtin);

// A pair of real numbers: two arguments, or one numeric matrix of two elements.
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

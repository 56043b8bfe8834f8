// Operators: tables by the coarse tags of the operands, then ladders by the detailed tags.
//
// A value operator never changes its operands and returns a temporary, or one of the operands; it does not
// release them. The node is the one that errors are reported against; it may be null.
#pragma once

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

struct Variable;

using BinaryFn = Matrix *(*)(Matrix *left, Matrix *right, PcNode *node);
using UnaryFn = Matrix *(*)(Matrix *m, PcNode *node);
// In place: the target is the variable's value and has no other holder. Returns the variable's value.
using InPlaceFn = Matrix *(*)(Matrix *target, Matrix *operand, Variable *var, PcNode *node);

constexpr unsigned n_pairs = n_families * n_families;
inline unsigned pairIndex(const Matrix *left, const Matrix *right) {
    return index(left->l1type) * n_families + index(right->l1type);
}

extern const BinaryFn sumfun[n_pairs], subfun[n_pairs], mpyfun[n_pairs], dvdfun[n_pairs], ddvfun[n_pairs],
    dmufun[n_pairs], bslfun[n_pairs], powfun[n_pairs], dpwfun[n_pairs], modfun[n_pairs];
extern const BinaryFn qsumfun[n_pairs], qsubfun[n_pairs], qmpyfun[n_pairs];  // may reuse temporaries
extern const UnaryFn trsfun[n_families], negfun[n_families];
extern const InPlaceFn addfun[n_pairs], dedfun[n_pairs], mulfun[n_pairs], divfun[n_pairs];

inline Matrix *getMatSum(Matrix *a, Matrix *b, PcNode *node) { return sumfun[pairIndex(a, b)](a, b, node); }
inline Matrix *getMatSub(Matrix *a, Matrix *b, PcNode *node) { return subfun[pairIndex(a, b)](a, b, node); }
inline Matrix *getMatProduct(Matrix *a, Matrix *b, PcNode *node) {
    return mpyfun[pairIndex(a, b)](a, b, node);
}
inline Matrix *getMatSlash(Matrix *a, Matrix *b, PcNode *node) { return dvdfun[pairIndex(a, b)](a, b, node); }
inline Matrix *getMatBsl(Matrix *a, Matrix *b, PcNode *node) { return bslfun[pairIndex(b, a)](b, a, node); }
inline Matrix *getMatPow(Matrix *a, Matrix *b, PcNode *node) { return powfun[pairIndex(a, b)](a, b, node); }
inline Matrix *getMatDmu(Matrix *a, Matrix *b, PcNode *node) { return dmufun[pairIndex(a, b)](a, b, node); }
inline Matrix *getMatDdv(Matrix *a, Matrix *b, PcNode *node) { return ddvfun[pairIndex(a, b)](a, b, node); }
inline Matrix *getMatDpw(Matrix *a, Matrix *b, PcNode *node) { return dpwfun[pairIndex(a, b)](a, b, node); }
inline Matrix *getMatMod(Matrix *a, Matrix *b, PcNode *node) { return modfun[pairIndex(a, b)](a, b, node); }
inline Matrix *getMatTrs(Matrix *m, PcNode *node) { return trsfun[index(m->l1type)](m, node); }
inline Matrix *getMatNeg(Matrix *m, PcNode *node) { return negfun[index(m->l1type)](m, node); }

// ---- The PF ladders: one operand, or both, beyond the four plain families. <op>PF_PF switches on matchCode.
constexpr uint8_t no_match = 86;
constexpr unsigned n_match_kinds = 26;
extern uint8_t num_type_match_code[n_match_kinds * n_match_kinds];
void fillMatchCodes();  // once, at start
inline uint8_t matchCode(const Matrix *a, const Matrix *b) {
    if (index(a->l2type) >= n_match_kinds || index(b->l2type) >= n_match_kinds) return no_match;
    return num_type_match_code[index(a->l2type) * n_match_kinds + index(b->l2type)];
}

// ---- Comparison and truth
using TruthFn = bool (*)(Matrix *left, Matrix *right, PcNode *node);
extern const TruthFn equfun[n_pairs], lesfun[n_pairs], leqfun[n_pairs];
bool are_equal(const Matrix *a, const Matrix *b);
bool getMatLogVal(const Matrix *m);
bool getPcLogVal(PcNode *node);
bool testMatSubset(Matrix *a, Matrix *b, PcNode *node);
bool testMatTsubset(Matrix *a, Matrix *b, PcNode *node);

// ---- Membership: 0, or the position of the first matching element, or 1.
uint32_t memberOfSet(Matrix *value, Matrix *domain, PcNode *node);

// ---- Intervals: merges (lower, upper, lower flag, upper flag) into a sorted disjoint array of `count`
// groups.
uint32_t add_interval(uint32_t count, double *array, const double *interval);

}  // namespace vesko

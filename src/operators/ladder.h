// The steps of the operator ladders: what is done for a pair of operands at least one of which is PF. A step
// has the contract of a value operator: it leaves its operands alone and releases only what it made.
#pragma once

#include "operators/dispatch.h"
#include "operators/elementwise.h"
#include "values/elements.h"

namespace vesko {

enum class Arith : uint8_t { Sum, Sub, Mpy, Dvd, Dmu, Ddv, Bsl, Dpw, Mod, Pow };
constexpr unsigned n_ariths = 10;
constexpr unsigned index(Arith op) { return static_cast<unsigned>(op); }

// The function of the operator's table for two given families, and for two operands.
BinaryFn tableEntry(Arith op, L1 left, L1 right);
inline Matrix *apply(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    return tableEntry(op, a->l1type, b->l1type)(a, b, node);
}
// The operator on x and y, which are a and b or temporaries made from them; those are released.
Matrix *applyMade(Arith op, Matrix *x, Matrix *y, const Matrix *a, const Matrix *b, PcNode *node);

using Step = Matrix *(*)(Arith op, Matrix *a, Matrix *b, PcNode *node);

[[noreturn]] Matrix *undefined(Arith op, Matrix *a, Matrix *b, PcNode *node);
// A kind, of either operand, that is not built yet.
[[noreturn]] Matrix *notBuilt(Arith op, Matrix *a, Matrix *b, PcNode *node);
[[noreturn]] void error_kind_not_built(PcNode *node, L2 kind);  // a structured or extended one

// ---- Real-like kinds
Matrix *asReals(Arith op, Matrix *a, Matrix *b, PcNode *node);  // what is not dense becomes real
Matrix *dense(Arith op, Matrix *a, Matrix *b, PcNode *node);    // PF operands with the storage of RM
Matrix *rangePair(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *rangeNumber(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *byteNumber(Arith op, Matrix *a, Matrix *b, PcNode *node);  // the other operand is of a plain family
Matrix *byteElements(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *byteProduct(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *byteQuotient(Arith op, Matrix *a, Matrix *b, PcNode *node);

// ---- Complex values, at least one of the two; the other is real-like
Matrix *complexSum(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *complexProduct(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *complexQuotient(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *complexElements(Arith op, Matrix *a, Matrix *b, PcNode *node);

// ---- Other kinds
Matrix *overLists(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *multidimPair(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *shiftText(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *repeatText(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *joinTexts(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *subtractTexts(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *findText(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *shiftInterval(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *intervalPair(Arith op, Matrix *a, Matrix *b, PcNode *node);
// ---- Functions. A function times a value is a call, of two functions the right one is applied first.
Matrix *callFunction(Matrix *f, Matrix *argument, PcNode *node);
Matrix *functionSum(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *functionProduct(Arith op, Matrix *a, Matrix *b, PcNode *node);
Matrix *functionQuotient(Arith op, Matrix *a, Matrix *b, PcNode *node);

// ---- Anything else
Matrix *objectOperator(Arith op, Matrix *a, Matrix *b, PcNode *node);  // a member of the left operand
Matrix *productOfRest(Arith op, Matrix *a, Matrix *b, PcNode *node);   // membership and look-up
Matrix *noQuotient(Arith op, Matrix *a, Matrix *b, PcNode *node);

// The whole number that a value of one element holds.
bool oneWholeNumber(const Matrix *m, int32_t &n);

// ---- Pairs of elements. Strides of the operands along the rows and columns of the result.
struct Pairing {
    uint32_t rows, cols;
    uint32_t a_row, a_col, b_row, b_col;
};
// By the shape rule, a value of one element going with everything; false if the shapes do not fit.
bool pairUp(const Matrix *a, const Matrix *b, Pairing &p);

// Calls f(k, i, j) for element k of the result, made of element i of the left and j of the right operand.
template <class F>
inline void eachPair(const Pairing &p, F f) {
    size_t k = 0;
    for (size_t r = 0; r < p.rows; r++)
        for (size_t c = 0; c < p.cols; c++, k++) f(k, r * p.a_row + c * p.a_col, r * p.b_row + c * p.b_col);
}

}  // namespace vesko

// The truth of values and of condition nodes, and the node handlers of comparisons and logic operators.
#include <algorithm>
#include <functional>
#include <utility>

#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "operators/dispatch.h"
#include "operators/elementwise.h"
#include "operators/operands.h"

namespace vesko {

template <class T>
static bool anyNonZero(const Matrix *m) {
    const T *x = elementsOf<T>(m);
    return std::any_of(x, x + m->length, [](T e) { return e != 0; });
}

bool getMatLogVal(const Matrix *m) {
    switch (m->l2type) {
        case L2::RS: return *m->rdata != 0.0;
        case L2::IM:
        case L2::IS: return anyNonZero<int32_t>(m);
        case L2::RM: return anyNonZero<double>(m);
        case L2::BY:
        case L2::BI: return anyNonZero<uint8_t>(m);
        case L2::CS:
        case L2::CM: return anyNonZero<double>(m->re()) || anyNonZero<double>(m->im());
        case L2::LS:
        case L2::VL:
        case L2::TX: return m->length != 0;
        case L2::NUL: return false;
        default: return true;  // ranges of zeros and structured matrices of zeros too
    }
}

// ---- Comparisons of a node's children. Nothing is allocated: the answer is a truth, or a singleton.
template <class Test>
static inline bool testChildren(PcNode *node, Test test) {
    guardStack();
    Matrix *a = evalOperand(node->child(0));
    Matrix *b = evalBeside(a, node->child(1));
    const bool truth = test(a, b);
    releasePair(a, b);
    return truth;
}

// Two real scalars are compared without the table, in the same way.
struct EqualReals {
    bool operator()(double x, double y) const { return x == y || (x != x && y != y); }
};

template <const TruthFn *table, class Reals, bool swapped>
[[gnu::noinline]] static bool comparesTrees(PcNode *node) {
    return testChildren(node, [node](Matrix *a, Matrix *b) {
        if constexpr (swapped) std::swap(a, b);
        if (a->l1type == L1::RS && b->l1type == L1::RS) return Reals()(*a->rdata, *b->rdata);
        return table[pairIndex(a, b)](a, b, node);
    });
}

// The real scalar that a leaf holds, or that a remainder, sum or difference of two leaves comes to: no record
// is needed for it. False for all else, with nothing evaluated.
static inline bool peekReal(const PcNode *node, double &x) {
    if (const Matrix *m = peekLeaf(node)) {
        if (m->l1type == L1::RS) x = *m->rdata;
        return m->l1type == L1::RS;
    }
    double a, b;
    switch (node->kind) {
        case NodeKind::Mod:
        case NodeKind::Sum:
        case NodeKind::Sub: break;
        default: return false;
    }
    if (!peekRealScalars(node->child(0), node->child(1), a, b)) return false;
    x = node->kind == NodeKind::Mod   ? Mod::apply(a, b)
        : node->kind == NodeKind::Sum ? Sum::apply(a, b)
                                      : Sub::apply(a, b);
    return true;
}

template <const TruthFn *table, class Reals, bool swapped = false>
static inline bool compares(PcNode *node) {
    double x, y;
    if (!peekReal(node->child(0), x) || !peekReal(node->child(1), y))
        return comparesTrees<table, Reals, swapped>(node);
    return swapped ? Reals()(y, x) : Reals()(x, y);
}

static bool isMember(PcNode *node) {
    return testChildren(node, [node](Matrix *a, Matrix *b) { return memberOfSet(a, b, node) != 0; });
}

static bool evaluatesToTruth(PcNode *node) {
    Matrix *m = node->exec(node);
    const bool truth = getMatLogVal(m);
    releaseMat(m);
    return truth;
}

static bool bothHold(PcNode *node) {
    guardStack();
    return getPcLogVal(node->child(0)) && getPcLogVal(node->child(1));
}

bool getPcLogVal(PcNode *node) {
    switch (node->kind) {
        case NodeKind::And: return bothHold(node);
        case NodeKind::Equal: return compares<equfun, EqualReals>(node);
        case NodeKind::NotEqual: return !compares<equfun, EqualReals>(node);
        case NodeKind::Less: return compares<lesfun, std::less<>>(node);
        case NodeKind::Greater: return compares<lesfun, std::less<>, true>(node);
        case NodeKind::LessEqual: return compares<leqfun, std::less_equal<>>(node);
        case NodeKind::GreaterEqual: return compares<leqfun, std::less_equal<>, true>(node);
        case NodeKind::MemberOf: return isMember(node);
        default: return evaluatesToTruth(node);
    }
}

Matrix *testPcEqual(PcNode *node) { return truthMat(compares<equfun, EqualReals>(node)); }
Matrix *testPcNotequal(PcNode *node) { return truthMat(!compares<equfun, EqualReals>(node)); }
Matrix *testPcLess(PcNode *node) { return truthMat(compares<lesfun, std::less<>>(node)); }
Matrix *testPcGreater(PcNode *node) { return truthMat(compares<lesfun, std::less<>, true>(node)); }
Matrix *testPcLequal(PcNode *node) { return truthMat(compares<leqfun, std::less_equal<>>(node)); }
Matrix *testPcGequal(PcNode *node) { return truthMat(compares<leqfun, std::less_equal<>, true>(node)); }
Matrix *testPcNot(PcNode *node) { return truthMat(!evaluatesToTruth(node->child(0))); }
Matrix *testPcAnd(PcNode *node) {
    return truthMat(getPcLogVal(node->child(0)) && getPcLogVal(node->child(1)));
}
Matrix *testPcOr(PcNode *node) {
    return truthMat(getPcLogVal(node->child(0)) || getPcLogVal(node->child(1)));
}

// ---- Subset operators.
template <bool (*test)(Matrix *, Matrix *, PcNode *), bool swapped>
static Matrix *subsetTruth(PcNode *node) {
    return truthMat(testChildren(
        node, [node](Matrix *a, Matrix *b) { return swapped ? test(b, a, node) : test(a, b, node); }));
}

Matrix *checkSubset(PcNode *node) { return subsetTruth<testMatSubset, false>(node); }
Matrix *checkSuperset(PcNode *node) { return subsetTruth<testMatSubset, true>(node); }
Matrix *checkTSubset(PcNode *node) { return subsetTruth<testMatTsubset, false>(node); }
Matrix *checkTSuperset(PcNode *node) { return subsetTruth<testMatTsubset, true>(node); }

}  // namespace vesko

// Subset tests between values that are sets: finite sets, intervals, classes, and the set of everything.
#include "engine/errors.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "values/containers.h"

namespace vesko {

namespace {

enum class Form { Subset, Strict };

// One end of a against the same end of b. `beyond` says that the end of a lies outside that of b; equal ends
// ask that a closed end of a be closed in b.
bool endFits(bool beyond, double a, double b, double a_closed, double b_closed) {
    return !beyond && (a != b || a_closed <= b_closed);
}

// The first intervals decide: groups of lower end, upper end, lower flag, upper flag.
bool intervalWithin(const Matrix *a, const Matrix *b, Form form) {
    const double *x = a->rdata, *y = b->rdata;
    const bool within =
        endFits(x[0] < y[0], x[0], y[0], x[2], y[2]) && endFits(x[1] > y[1], x[1], y[1], x[3], y[3]);
    if (form == Form::Subset || !within) return within;
    return x[0] != y[0] || x[1] != y[1] || x[2] != y[2] || x[3] != y[3];
}

bool isWithin(const Matrix *a, const Matrix *b, PcNode *node, Form form) {
    if (a == b) return form == Form::Subset;
    if (b == theCompleteMat()) return true;
    switch (a->l2type) {
        case L2::FSET:
            if (b->l2type == L2::FSET)
                return form == Form::Subset ? sub_set(a->table(), b->table())
                                            : true_sub_set(a->table(), b->table());
            if (is_empty_set(a->table())) return true;
            if (b->l2type == L2::ITV) return set_in_interval(a->table(), b);
            break;
        case L2::ITV:
            if (b->l2type == L2::ITV) return intervalWithin(a, b, form);
            break;
        case L2::CLASS:
            if (b->l2type == L2::CLASS) return isDerivedType(classOf(a), classOf(b));
            break;
        default: break;
    }
    error_failure(node);
}

}  // namespace

bool testMatSubset(Matrix *a, Matrix *b, PcNode *node) { return isWithin(a, b, node, Form::Subset); }
bool testMatTsubset(Matrix *a, Matrix *b, PcNode *node) { return isWithin(a, b, node, Form::Strict); }

}  // namespace vesko

// Assignment to variables: the plain store, and compound assignment with its forms for real scalars.
#include "builtins/bfunc.h"
#include "engine/assign.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "operators/dispatch.h"

namespace vesko {

Matrix *doVarAsgn(PcNode *node) {
    Matrix *value = node->eval(0);
    return replaceMat(getVar(node->value)->value, value);
}

// ---- Compound assignment -----------------------------------------------------------------------

namespace {

using InPlaceTable = const InPlaceFn[n_pairs];

// The operand must survive the change of the target when it is the target, or may be a part of it.
bool dependsOnTarget(const Matrix *operand, const Matrix *target) {
    return operand == target || (!operand->isTemp() && target->l2type > L2::CM && target->l2type != L2::TX);
}

// The new value stands in the variable already; one that its domain refuses gives way to the old.
void testStored(PcNode *node, Variable *var, Matrix *old) {
    if (!var->domain || memberOfSet(var->value, var->domain, node)) return;
    replaceMat(var->value, old);
    error_asgn_justify(node);
}

// A variable with a domain keeps its old value aside until the new one has passed the test. A pinned value is
// shared, so that the in-place operation works on a clone.
template <InPlaceTable &table>
Matrix *compoundStore(PcNode *node, Matrix *operand) {
    Variable *var = getVar(node->value);
    Matrix *old = var->value;
    const uint32_t first_pin = pinCount();
    const bool keep = var->domain || dependsOnTarget(operand, old);
    if (keep) {
        pinMat(operand);
        pinMat(old);
    }
    Matrix *target = unshare(var->value);
    Matrix *result = table[pairIndex(target, operand)](target, operand, var, node);
    testStored(node, var, old);
    if (keep)
        releasePins(first_pin);
    else
        releaseMat(operand);
    return result;
}

template <InPlaceTable &table>
Matrix *compoundAsgn(PcNode *node) {
    return compoundStore<table>(node, node->eval(0));
}

// For variables of the domain Class_D. A declaration that failed at run time leaves its variable without a
// scalar, so the tags are looked at all the same.
template <class Op>
Matrix *scalarAsgn(PcNode *node, ExecFn general, Op op) {
    Matrix *operand = node->eval(0);
    Matrix *&slot = getVar(node->value)->value;
    if (operand->l1type != L1::RS || slot->l1type != L1::RS) return general(node);
    Matrix *target = unshare(slot);
    target->rdata[0] = op(target->rdata[0], operand->rdata[0]);
    return target;
}

}  // namespace

#define COMPOUND_ASGN(name, table, op)                                            \
    Matrix *name(PcNode *node) { return compoundAsgn<table>(node); }              \
    Matrix *name##_DD(PcNode *node) {                                             \
        return scalarAsgn(node, name, [](double x, double y) { return x op y; }); \
    }                                                                             \
    Matrix *name##_DS(PcNode *node) { return name##_DD(node); }

COMPOUND_ASGN(addAsgn, addfun, +)
COMPOUND_ASGN(subAsgn, dedfun, -)
COMPOUND_ASGN(mulAsgn, mulfun, *)
COMPOUND_ASGN(dvdAsgn, divfun, /)

#undef COMPOUND_ASGN

// x = e + x. Numbers commute, so they add in place; the sums of other kinds keep the order of the operands.
Matrix *addAsgnBefore(PcNode *node) {
    Matrix *operand = node->eval(0);
    Variable *var = getVar(node->value);
    Matrix *old = var->value;
    if (isNumeric(operand->l2type) && isNumeric(old->l2type)) return compoundStore<addfun>(node, operand);
    const uint32_t first_pin = pinCount();
    pinMat(operand);
    pinMat(old);
    Matrix *result = replaceMat(var->value, getMatSum(operand, old, node));
    testStored(node, var, old);
    releasePins(first_pin);
    return result;
}

}  // namespace vesko

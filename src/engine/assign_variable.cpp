// Assignment to variables: the plain store, and compound assignment with its forms for real scalars.
#include "builtins/bfunc.h"
#include "engine/assign.h"
#include "engine/domains.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "operators/dispatch.h"
#include "operators/elementwise.h"

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

// The new value stands in the variable already; one that its domain refuses gives way to the old. Leaves
// pins.
void testStored(PcNode *node, Variable *var, Matrix *old) {
    if (!var->domain) return;
    openStore(&var->value, old);
    if (!memberOfSet(pinMat(var->value), var->domain, node)) error_asgn_justify(node);
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
    table[pairIndex(target, operand)](target, operand, var, node);
    testStored(node, var, old);
    if (keep)
        releasePins(first_pin);
    else
        releaseMat(operand);
    return var->value;
}

Matrix *storeRealScalar(Matrix *&slot, double x, Matrix *operand) {
    Matrix *target = unshare(slot);
    *target->rdata = x;
    releaseMat(operand);
    return target;
}

// A real scalar takes another one without more ado, where the domain of the variable has the result.
template <class Op>
Matrix *stepRealScalar(Variable *var, Matrix *operand) {
    if (var->value->l1type != L1::RS || operand->l1type != L1::RS) return nullptr;
    const double x = Op::apply(*var->value->rdata, *operand->rdata);
    if (var->domain && !hasRealQuickly(var->domain, x)) return nullptr;
    return storeRealScalar(var->value, x, operand);
}

template <InPlaceTable &table, class Op>
Matrix *compoundAsgn(PcNode *node, Matrix *operand) {
    Variable *var = getVar(node->value);
    if (Matrix *result = stepRealScalar<Op>(var, operand)) return result;
    return compoundStore<table>(node, operand);
}

// For variables of the domain Class_D. A declaration that failed at run time leaves its variable without a
// scalar, so the tags are looked at all the same.
template <class Op>
Matrix *scalarAsgn(PcNode *node, ExecFn general) {
    Matrix *operand = node->eval(0);
    Matrix *&slot = getVar(node->value)->value;
    if (operand->l1type != L1::RS || slot->l1type != L1::RS) return general(node);
    return storeRealScalar(slot, Op::apply(*slot->rdata, *operand->rdata), operand);
}

}  // namespace

#define COMPOUND_ASGN(name, table, Op)                                                  \
    Matrix *name(PcNode *node) { return compoundAsgn<table, Op>(node, node->eval(0)); } \
    Matrix *name##_DD(PcNode *node) { return scalarAsgn<Op>(node, name); }              \
    Matrix *name##_DS(PcNode *node) { return name##_DD(node); }

COMPOUND_ASGN(addAsgn, addfun, Sum)
COMPOUND_ASGN(subAsgn, dedfun, Sub)
COMPOUND_ASGN(mulAsgn, mulfun, Mpy)
COMPOUND_ASGN(dvdAsgn, divfun, Dvd)

#undef COMPOUND_ASGN

// x = e + x. Numbers commute, so they add in place; the sums of other kinds keep the order of the operands.
Matrix *addAsgnBefore(PcNode *node) {
    Matrix *operand = node->eval(0);
    Variable *var = getVar(node->value);
    Matrix *old = var->value;
    if (isNumeric(operand->l2type) && isNumeric(old->l2type)) return compoundAsgn<addfun, Sum>(node, operand);
    const uint32_t first_pin = pinCount();
    pinMat(operand);
    pinMat(old);
    replaceMat(var->value, getMatSum(operand, old, node));
    testStored(node, var, old);
    releasePins(first_pin);
    return var->value;
}

}  // namespace vesko

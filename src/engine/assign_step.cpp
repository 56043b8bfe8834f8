// Increment and decrement of variables, before and after, and the post form of other targets.
#include "engine/assign.h"
#include "engine/domains.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"
#include "operators/index.h"
#include "operators/index_walk.h"
#include "values/convert.h"

namespace vesko {

namespace {

struct StepUp {
    static constexpr int by = 1;
    static constexpr NodeKind kind = NodeKind::PreInc;
    static Matrix *general(Matrix *m, Matrix *one, PcNode *node) { return getMatSum(m, one, node); }
};
struct StepDown {
    static constexpr int by = -1;
    static constexpr NodeKind kind = NodeKind::PreDec;
    static Matrix *general(Matrix *m, Matrix *one, PcNode *node) { return getMatSub(m, one, node); }
};

bool isStepKind(const Matrix *m) { return m->l2type <= L2::BI && m->l2type != L2::RNG; }

// Integers and bytes wrap; a bit flips in either direction.
template <class Step>
void stepInPlace(Matrix *m) {
    switch (m->l2type) {
        case L2::IM:
        case L2::IS:
            for (uint32_t k = 0; k < m->length; k++)
                m->ints()[k] = static_cast<int32_t>(static_cast<uint32_t>(m->ints()[k]) + Step::by);
            break;
        case L2::BY:
            for (uint32_t k = 0; k < m->length; k++) m->bytes()[k] += Step::by;
            break;
        case L2::BI:
            for (uint32_t k = 0; k < m->length; k++) m->bytes()[k] ^= 1;
            break;
        default:
            for (uint32_t k = 0; k < m->length; k++) m->rdata[k] += Step::by;
    }
}

// The stepped value as a value of its own. `one` is what the kinds without a step of their own are stepped
// by.
template <class Step>
Matrix *stepped(Matrix *m, Matrix *(*one)(), PcNode *node) {
    if (m->l1type == L1::RS) return newRealScalarMat(m->rdata[0] + Step::by);
    if (isStepKind(m)) {
        Matrix *result = cloneMatrix(m);
        stepInPlace<Step>(result);
        return result;
    }
    if (m->l2type > L2::CM) error_undef_opr(node, m, Step::kind);
    return Step::general(m, one(), node);
}

Matrix *integerOne() { return newIntScalarMat(1); }

// Whether only variable k, and perhaps its compile-time record, holds the value. A singleton stands for a
// value of the variable's own.
bool soleHolder(const Matrix *m, uint32_t k) {
    if (m->nlinks() < 2 || m->status > status_singleton / 2) return true;
    if (m->nlinks() > 2) return false;
    if (top->func) return top->func->data->ctvars->at<CtVar>(k)->value == m;
    return inTopLevel() && getCtVar(k)->value == m;
}

template <class Step>
Matrix *stepPlainly(PcNode *node, Variable *var) {
    Matrix *m = var->value;
    if (m->nlinks() < 2 && isStepKind(m)) {
        stepInPlace<Step>(m);
        return m;
    }
    return replaceMat(var->value, stepped<Step>(m, integerOne, node));
}

// What a step before must test, by the holders of the old value, is in the domain of a real scalar.
template <class Step>
bool stepsRealScalar(const Variable *var, bool sole) {
    if (var->value->l1type != L1::RS) return false;
    const double x = *var->value->rdata;
    return hasRealQuickly(var->domain, sole ? x + Step::by : x);
}

// With a domain. What is tested is the new value if nobody else holds the old one, else the old value. A
// refused real is set back by taking 1 off its first element, in the decrement too.
template <class Step>
Matrix *preStepInDomain(PcNode *node, Variable *var) {
    Matrix *old = var->value;
    bool sole = soleHolder(old, node->value);
    if (stepsRealScalar<Step>(var, sole)) return stepPlainly<Step>(node, var);
    Matrix *result = stepped<Step>(old, integerOne, node);
    pinMat(result);
    openStore(&var->value, old);
    replaceMat(var->value, result);
    const bool accepted = memberOfSet(sole ? result : old, var->domain, node);
    const bool real = result->l1type == L1::RS || result->l1type == L1::RM;
    closeStore(accepted || real);
    unpinMat();
    if (accepted) return var->value;
    if (real) unshare(var->value)->rdata[0] -= 1.0;
    error_asgn_justify(node);
}

template <class Step>
Matrix *preStep(PcNode *node) {
    Variable *var = getVar(node->value);
    return var->domain ? preStepInDomain<Step>(node, var) : stepPlainly<Step>(node, var);
}

// The value tested is the one before the step: a step can leave the domain, and the next one is refused.
Matrix *postStepInDomain(PcNode *node, Variable *var, Matrix *fresh) {
    Matrix *old = pinMat(var->value);
    if (!memberOfSet(old, var->domain, node)) error_asgn_justify(node);
    replaceMat(var->value, fresh);
    return unpinMat();
}

// The old record becomes the result, so nothing is copied.
template <class Step>
Matrix *postStep(PcNode *node) {
    Variable *var = getVar(node->value);
    Matrix *old = var->value;
    Matrix *fresh = stepped<Step>(old, theTrueMat, node);
    const bool tested = old->l1type == L1::RS && var->domain && hasRealQuickly(var->domain, *old->rdata);
    if (var->domain && !tested) return postStepInDomain(node, var, fresh);
    quickUpdVar(node->value, fresh);
    return detachMat(old);
}

// For variables of the domain Class_D: no test, since a stepped real scalar stays one.
template <class Step>
Matrix *preStep_D(PcNode *node) {
    Matrix *&slot = getVar(node->value)->value;
    if (slot->l1type != L1::RS) return preStep<Step>(node);
    if (slot->nlinks() > 1) return replaceMat(slot, newRealScalarMat(slot->rdata[0] + Step::by));
    slot->rdata[0] += Step::by;
    return slot;
}

template <class Step>
Matrix *postStep_D(PcNode *node) {
    Matrix *old = getVarMat(node->value);
    if (old->l1type != L1::RS) return postStep<Step>(node);
    quickUpdVar(node->value, newRealScalarMat(old->rdata[0] + Step::by));
    return detachMat(old);
}

}  // namespace

Matrix *doVarPreInc(PcNode *node) { return preStep<StepUp>(node); }
Matrix *doVarPreDec(PcNode *node) { return preStep<StepDown>(node); }
Matrix *doVarPostInc(PcNode *node) { return postStep<StepUp>(node); }
Matrix *doVarPostDec(PcNode *node) { return postStep<StepDown>(node); }
Matrix *doVarPreInc_D(PcNode *node) { return preStep_D<StepUp>(node); }
Matrix *doVarPreDec_D(PcNode *node) { return preStep_D<StepDown>(node); }
Matrix *doVarPostInc_D(PcNode *node) { return postStep_D<StepUp>(node); }
Matrix *doVarPostDec_D(PcNode *node) { return postStep_D<StepDown>(node); }

// The value of a place that is no plain variable, stepped.
template <class Step>
static Matrix *steppedPlace(PcNode *node) {
    Matrix *old = node->eval(0);
    Matrix *result = stepped<Step>(old, integerOne, node);
    releaseMat(old);
    return result;
}

Matrix *getTreeStepUp(PcNode *node) { return steppedPlace<StepUp>(node); }
Matrix *getTreeStepDown(PcNode *node) { return steppedPlace<StepDown>(node); }

// ---- One element of a matrix in place: `++m[i]`. The node is the store of the stepped element into m[i];
// the index must lie inside.

namespace {

template <class Step>
void stepElement(Matrix *m, uint32_t i) {
    switch (m->l2type) {
        case L2::IM:
        case L2::IS:
            m->ints()[i] = static_cast<int32_t>(static_cast<uint32_t>(m->ints()[i]) + Step::by);
            break;
        case L2::BY: m->bytes()[i] += Step::by; break;
        case L2::BI: m->bytes()[i] ^= 1; break;
        case L2::CS:
        case L2::CM: unshare(m->entries()[0])->rdata[i] += Step::by; break;
        default: m->rdata[i] += Step::by;
    }
}

// A scalar of the element's kind; of a complex element, the real part.
Matrix *elementOf(const Matrix *m, uint32_t i) {
    switch (m->l2type) {
        case L2::IM:
        case L2::IS: return newIntScalarMat(m->ints()[i]);
        case L2::BY: return newByteScalarMat(m->bytes()[i]);
        case L2::BI: return newBinaryScalarMat(m->bytes()[i]);
        case L2::CS:
        case L2::CM: return newRealScalarMat(m->re()->rdata[i]);
        default: return newRealScalarMat(m->rdata[i]);
    }
}

bool hasStepElements(const Matrix *m) {
    return m->l2type <= L2::BI || m->l2type == L2::CS || m->l2type == L2::CM;
}

template <class Step>
void stepElements(Matrix *m, const IndexRun &run) {
    run.visit([=, n = run.length](auto i) {
        for (uint32_t k = 0; k < n; k++) stepElement<Step>(m, i(k));
    });
}

template <class Step, bool output>
Matrix *stepMatRef(PcNode *node) {
    PcNode *index_node = node->child(0)->child(1);
    Target target = openTarget(node->child(0)->child(0));
    Matrix *index_value = pinMat(index_node->exec(index_node));
    Matrix *m = uniquelize(target);
    if (!hasStepElements(m)) error_undef_opr(node, m, Step::kind);
    uint32_t max;
    Matrix *index = chkIndxMat(index_value, m->length, max, index_node);
    if (index != index_value) pinMat(index);
    if (m->l2type == L2::RNG) m = replaceMat(*target.slot, convToDb(m));
    stepElements<Step>(m, indexRun(index));
    if (!output) return closeTarget(target, m, node);
    return closeTarget(target, index->length == 1 ? elementOf(m, max - 1) : matRef(m, index, node), node);
}

}  // namespace

Matrix *doMatRefPreIncNoOutput(PcNode *node) { return stepMatRef<StepUp, false>(node); }
Matrix *doMatRefPreIncOutput(PcNode *node) { return stepMatRef<StepUp, true>(node); }
Matrix *doMatRefPreDecNoOutput(PcNode *node) { return stepMatRef<StepDown, false>(node); }
Matrix *doMatRefPreDecOutput(PcNode *node) { return stepMatRef<StepDown, true>(node); }

// The child assigns the stepped value; the result is the value before.
Matrix *doPostIncDec(PcNode *node) {
    PcNode *assignment = node->child(0);
    Matrix *old = assignment->eval(0);
    Matrix *saved = old->isTemp() ? old : cloneMatrix(old);
    assignment->exec(assignment);
    return saved;
}

}  // namespace vesko

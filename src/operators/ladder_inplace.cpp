// In place with a PF target or operand: what fits the target's own buffers is written there, the rest is
// computed anew and takes the variable.
#include <cstring>

#include "engine/frame.h"
#include "operators/growth.h"
#include "operators/ladder.h"
#include "operators/ladders.h"
#include "values/convert.h"

namespace vesko {

namespace {

constexpr Arith add = Arith::Sum, ded = Arith::Sub, mul = Arith::Mpy, div = Arith::Dvd;

// The buffers of a complex or multidimensional value that nobody else holds: one for real kinds, two for
// complex ones.
struct Buffers {
    double *parts[2];
    unsigned count;  // 0: not to be written in place
    uint32_t length;
};

Buffers buffersOf(const Matrix *m) {
    switch (m->l2type) {
        case L2::CS:
        case L2::CM:
            if (m->re()->nlinks() > 1 || m->im()->nlinks() > 1) return {};
            return {{m->re()->rdata, m->im()->rdata}, 2, m->length};
        case L2::RMDM: return {{m->rdata, nullptr}, 1, m->length};
        case L2::CMDM: return {{m->rdata, m->rdata + m->length}, 2, m->length};
        default: return {};
    }
}

template <class Op>
void stepParts(const Buffers &target, const Buffers &operand) {
    for (unsigned k = 0; k < target.count; k++)
        loopVV<Op>(target.parts[k], operand.parts[k], target.parts[k], target.length);
}

// Sums change the real part only, products and quotients both.
bool stepByNumber(Arith op, const Buffers &target, double x) {
    const unsigned count = op == add || op == ded ? 1 : target.count;
    for (unsigned k = 0; k < count; k++) {
        double *z = target.parts[k];
        if (op == add) loopVS<Sum>(z, x, z, target.length);
        if (op == ded) loopVS<Sub>(z, x, z, target.length);
        if (op == mul) loopVS<Mpy>(z, x, z, target.length);
        if (op == div) loopVS<Dvd>(z, x, z, target.length);
    }
    return true;
}

bool sameExtents(const Matrix *a, const Matrix *b) {
    if (a->l2type != b->l2type || a->length != b->length) return false;
    return isComplex(a->l2type) ? sameShape(a, b) : sameDims(a, b);
}

// Whether the operation could be done in the target's buffers, and was.
bool stepInPlace(Arith op, Matrix *target, const Matrix *operand) {
    const Buffers z = buffersOf(target);
    if (z.count == 0) return false;
    if (operand->l1type == L1::RS) return stepByNumber(op, z, operand->rdata[0]);
    if (operand->l1type == L1::IS) return stepByNumber(op, z, operand->ints()[0]);
    if ((op != add && op != ded) || !sameExtents(target, operand)) return false;
    const Buffers x = buffersOf(operand);
    if (x.count != z.count) return false;
    if (op == add)
        stepParts<Sum>(z, x);
    else
        stepParts<Sub>(z, x);
    return true;
}

// The string may be appended to itself.
Matrix *appendText(const Matrix *target, const Matrix *operand, Variable *var) {
    const uint32_t length = target->length, more = operand->length;
    const bool itself = target == operand;
    Matrix *result = txmAddLen(var->value, checkedLength(1, uint64_t{length} + more));
    memcpy(result->text() + length, itself ? result->text() : operand->text(), more);
    return result;
}

Matrix *inPlace(Arith op, Matrix *target, Matrix *operand, Variable *var, PcNode *node) {
    if (op == add && target->l2type == L2::TX && operand->l2type == L2::TX)
        return appendText(target, operand, var);
    if (stepInPlace(op, target, operand)) return target;
    return updateVariable(var, apply(op, target, operand, node));
}

}  // namespace

#define X(op, L, R)                                                                     \
    Matrix *op##L##_##R(Matrix *target, Matrix *operand, Variable *var, PcNode *node) { \
        return inPlace(op, target, operand, var, node);                                 \
    }
PF_INPLACE_FUNCTIONS(X)
#undef X

}  // namespace vesko

// Operators on objects: each is a member of the object's class, which gets the right operand.
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/ladder.h"

namespace vesko {

namespace {

// Element operators with a scalar, and left division by one, arrive as product and quotient: the node tells
// what the source says.
Arith writtenOperator(Arith op, const PcNode *node) {
    if (!node) return op;
    switch (node->kind) {
        case NodeKind::DotMul: return Arith::Dmu;
        case NodeKind::DotDiv: return Arith::Ddv;
        case NodeKind::Backslash: return Arith::Bsl;
        default: return op;
    }
}

constexpr FieldIndex members[n_ariths] = {
    FIELD_INDEX__SUM, FIELD_INDEX__SUB, FIELD_INDEX__MUL, FIELD_INDEX__DVD, FIELD_INDEX__DMU,
    FIELD_INDEX__DDV, FIELD_INDEX__BSL, n_fixed_fields,   n_fixed_fields,   FIELD_INDEX__POW,
};

}  // namespace

// The table of left division passes the right operand first.
Matrix *objectOperator(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const Arith written = writtenOperator(op, node);
    const bool mirrored = written == Arith::Bsl;
    Matrix *object = mirrored ? b : a, *other = mirrored ? a : b;
    Matrix *member =
        object->l2type == L2::OBJ ? findObjField(objectOf(object), members[index(written)]) : nullptr;
    if (!member) error_undef_opr2(node);
    pinMat(member);
    pinMat(object);
    Matrix *result = keepResult(callMemberFunc(member, other, object, node));
    unpinMat();
    releaseMat(unpinMat());
    return passResult(result);
}

}  // namespace vesko

// Member calls, a.f(...): of the parameters of functions and built-ins, of the fields of objects, and of the
// methods of all other values.
#include "builtins/bfunc.h"
#include "engine/assign.h"
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "members/methods.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "values/convert.h"

namespace vesko {

namespace {

const char *fieldNameOf(const PcNode *field) { return getFieldName(static_cast<uint32_t>(field->value)); }

// ---- What is called: the value of the field, uncomputed; null if there is none.

Matrix *memberOfFunction(const FuncRec *f, uint32_t name) {
    const sfield *parm = findParm(f, name);
    return parm ? parm->value : nullptr;
}

// `outside` says that the owner was not named by `parent`.
Matrix *memberInSlot(const xfield *slot, bool outside, const PcNode *field, PcNode *node) {
    switch (slot->cv->attr) {
        case Access::Common:
        case Access::Auto: return slot->cv->value;
        case Access::Private:
            if (outside) error_mbuf_misuse(node, fieldNameOf(field));
            return slot->value;
        default: return slot->value;
    }
}

// The node of the owner: x in x.f and in x::C.f.
PcNode *ownerNode(const PcNode *field) {
    PcNode *owner = field->child(0);
    return field->kind == NodeKind::ForcedField ? owner->child(0) : owner;
}

const xfield *forcedSlot(const Matrix *object, const PcNode *field) {
    Matrix *type = field->child(0)->eval(1);
    const xfield *slot = nullptr;
    if (type->l2type == L2::CLASS)
        slot = findForcedObjField(objectOf(object), static_cast<uint32_t>(field->value), classOf(type));
    releaseMat(type);
    return slot;
}

Matrix *memberOfObject(Matrix *object, const PcNode *field, PcNode *node) {
    const uint32_t name = static_cast<uint32_t>(field->value);
    const bool outside = ownerNode(field)->kind != NodeKind::Parent;
    if (field->kind == NodeKind::ForcedField) {
        const xfield *slot = forcedSlot(object, field);
        return slot ? memberInSlot(slot, outside, field, node) : nullptr;
    }
    if (const xfield *slot = findObjSlot(objectOf(object), name))
        return memberInSlot(slot, outside, field, node);
    const PcNode *args = node->child(1);
    if (args->ncub == 0 || node->kind == NodeKind::MemberCallNp) return findObjAcquiredField(object, name);
    return findObjVlField(object, args->child(0), name);
}

// A class has one member, its constructor, which runs with the class as parent.
Matrix *memberOfClass(const Xclass *type, uint32_t name) {
    return name == FIELD_INDEX_NEW ? type->head->matAt(Xclass::constructor_entry) : nullptr;
}

Matrix *findMember(Matrix *owner, PcNode *field, PcNode *node) {
    const uint32_t name = static_cast<uint32_t>(field->value);
    if (owner->l2type == L2::OBJ) return memberOfObject(owner, field, node);
    if (field->kind == NodeKind::ForcedField)
        error_forcing_no_obj(node, pcnode2str(ownerNode(field))->text());
    switch (owner->l2type) {
        case L2::UF: return memberOfFunction(owner->func(), name);
        case L2::BF: return getBfParm(owner->builtin(), name);
        case L2::CLASS: return memberOfClass(classOf(owner), name);
        default: return nullptr;
    }
}

bool hasMembers(const Matrix *owner) {
    return isFunction(owner->l2type) || owner->l2type == L2::OBJ || owner->l2type == L2::CLASS;
}

// ---- How it is called

// The node is that of the member call; its second child has the arguments.
using MemberCall = Matrix *(*)(Matrix *member, Matrix *owner, PcNode *node);

// What is no function is multiplied with the arguments. No value at all cannot be.
template <CallFn FuncRecData::*entry>
Matrix *callMember(Matrix *member, Matrix *owner, PcNode *node) {
    PcNode *args = node->child(1);
    if (member->l2type == L2::UF) return (member->func()->data->*entry)(member->func(), args, owner);
    Matrix *values = evalArgList(args);
    if (member->l2type == L2::DNE) error_undef_opr2(node);
    Matrix *result = keepResult(getMatProduct(member, values, node));
    releaseMat(values);
    return passResult(result);
}

Matrix *callMemberNamed(Matrix *member, Matrix *owner, PcNode *node) {
    if (member->l2type == L2::UF) return callUfByNp(member->func(), node->child(1), owner, node);
    if (member->l2type == L2::BF) return callBfbyNp(member, node->child(1), node);
    error_undef_opr(node, member, node->kind);
}

bool changesParent(const Matrix *member, const Matrix *owner) {
    return member->l2type == L2::UF && member->func()->data->isMutator() && owner->l2type == L2::OBJ;
}

// The function may change the owner as it is: no other holder sees it, and no domain is to be asked.
bool isSole(const PcNode *place, const Matrix *owner) {
    if (place->kind == NodeKind::Parent || owner->isTemp()) return true;
    if (place->kind != NodeKind::Variable) return false;
    return owner->nlinks() == 1 && !getVar(static_cast<uint32_t>(place->value))->domain;
}

// A function that changes its parent gets an object of which no other holder sees the change; the domains on
// the way to it are asked behind the call.
Matrix *callOnTarget(Matrix *member, PcNode *place, PcNode *node, MemberCall call) {
    pinMat(member);
    Matrix *result =
        keepResult(changeTarget(place, node, [&](Matrix *object) { return call(member, object, node); }));
    releaseMat(unpinMat());
    return passResult(result);
}

// Methods have no names for their arguments.
Matrix *refuseNamedMethod(Matrix *, PcNode *node) { error_dne(node, fieldNameOf(node->child(0))); }

// Children: the field node, whose child is the owner, and the arguments. The parameters of a function that
// belongs to no value of its own run with the function as parent.
Matrix *doMemberCall(PcNode *node, MemberCall call, Matrix *(*method)(Matrix *, PcNode *) = callMethod) {
    PcNode *field = node->child(0), *place = ownerNode(field);
    countNode();
    Matrix *owner = place->exec(place);
    if (!hasMembers(owner) && field->kind != NodeKind::ForcedField) return method(owner, node);
    pinMat(owner);
    Matrix *member = findMember(owner, field, node);
    if (!member) error_dne(node, fieldNameOf(field));
    if (changesParent(member, owner)) {
        unpinMat();
        if (!isSole(place, owner)) {
            if (isTarget(place)) return callOnTarget(member, place, node, call);
            owner = cloneMatrix(owner);
        }
        pinMat(owner);
    }
    pinMat(member);
    Matrix *result = keepResult(call(member, owner, node));
    releaseMat(unpinMat());
    releaseMat(unpinMat());
    return passResult(result);
}

}  // namespace

Matrix *doMBFcall_0(PcNode *node) { return doMemberCall(node, callMember<&FuncRecData::call0>); }
Matrix *doMBFcall_1(PcNode *node) { return doMemberCall(node, callMember<&FuncRecData::call1>); }
Matrix *doMBFcall_2(PcNode *node) { return doMemberCall(node, callMember<&FuncRecData::call2>); }
Matrix *doMBFcall_3(PcNode *node) { return doMemberCall(node, callMember<&FuncRecData::call3>); }
Matrix *doMBFcall_7(PcNode *node) { return doMemberCall(node, callMember<&FuncRecData::call7>); }
Matrix *doMBFcall_Np(PcNode *node) { return doMemberCall(node, callMemberNamed, refuseNamedMethod); }

}  // namespace vesko

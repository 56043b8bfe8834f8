// The dot on functions and built-ins: their parameters read, and called as members.
#include "engine/members.h"

#include "builtins/bfunc.h"
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"

namespace vesko {

namespace {

constexpr uint8_t auto_attribute = 3;

const char *fieldNameOf(const PcNode *field) { return getFieldName(static_cast<uint32_t>(field->value)); }

// Public parameters come first in the list, so they are found first.
const sfield *findParm(const FuncRec *f, uint32_t field) {
    for (uint32_t k = 0; f->parms && k < f->parms->size; k++)
        if (f->parms->at<sfield>(k)->index == field) return f->parms->at<sfield>(k);
    return nullptr;
}

Matrix *findBuiltinParm(const Bfunc *bf, uint32_t field) {
    for (uint32_t k = 0; bf->parmNames && k < bf->parmNames->size; k++)
        if (bf->parmNames->numberAt(k) == field) return bf->parmValues->matAt(k);
    return theDneMat();
}

// What a member call calls: the value of the field, uncomputed; theDneMat if there is none.
Matrix *findMember(Matrix *owner, uint32_t field, PcNode *node) {
    if (owner->l2type == L2::BF) return findBuiltinParm(owner->builtin(), field);
    if (owner->l2type != L2::UF) error_not_built(node, "a member of this kind of value");
    const sfield *parm = findParm(owner->func(), field);
    return parm ? parm->value : theDneMat();
}

}  // namespace

Matrix *getMatField(Matrix *m, uint32_t field, PcNode *node) {
    if (m->l2type == L2::UF) {
        const sfield *parm = findParm(m->func(), field);
        if (!parm) return theDneMat();
        if (parm->flag != auto_attribute) return parm->value;
        FuncRec *f = parm->value->func();
        return f->data->call0(f, node, m);
    }
    return findMember(m, field, node);
}

namespace {

using FieldReader = Matrix *(*)(Matrix *m, uint32_t field, PcNode *node);

Matrix *readField(PcNode *node, FieldReader reader) {
    Matrix *m = pinMat(node->eval(0));
    Matrix *value = reader(m, static_cast<uint32_t>(node->value), node);
    if (value == theDneMat()) error_dne(node, fieldNameOf(node));
    keepResult(value);
    releaseMat(unpinMat());
    return passResult(value);
}

}  // namespace

Matrix *getStructField(PcNode *node) { return readField(node, getMatField); }

Matrix *getParField(PcNode *node) { return readField(node, getMatField); }

Matrix *getStructFieldFunc(PcNode *node) { return readField(node, findMember); }

Matrix *getParFieldFunc(PcNode *node) { return readField(node, findMember); }

Matrix *getForcedFieldFunc(PcNode *node) { error_not_built(node, "a forced field"); }

// ---- Member calls: children are the field node, whose child is the owner, and the arguments.

namespace {

template <CallFn FuncRecData::*entry>
Matrix *callOf(Matrix *member, PcNode *args, Matrix *owner) {
    if (member->l2type == L2::UF) return (member->func()->data->*entry)(member->func(), args, owner);
    Matrix *values = evalArgList(args);
    Matrix *result = keepResult(getMatProduct(member, values, args));
    releaseMat(values);
    return passResult(result);
}

Matrix *callNamed(Matrix *member, PcNode *args, Matrix *owner) {
    if (member->l2type == L2::UF) return callUfByNp(member->func(), args, owner);
    if (member->l2type == L2::BF) return callBfbyNp(member, args);
    error_undef_opr(args, member, NodeKind::MemberCallNp);
}

using MemberCall = Matrix *(*)(Matrix *member, PcNode *args, Matrix *owner);

Matrix *callMemberOf(PcNode *node, MemberCall call) {
    PcNode *field = node->child(0);
    if (field->kind == NodeKind::ForcedField) error_not_built(node, "calling a forced field");
    Matrix *owner = pinMat(field->eval(0));
    Matrix *member = findMember(owner, static_cast<uint32_t>(field->value), node);
    if (member == theDneMat()) error_dne(node, fieldNameOf(field));
    pinMat(member);
    Matrix *result = keepResult(call(member, node->child(1), owner));
    unpinMat();
    releaseMat(unpinMat());
    return passResult(result);
}

}  // namespace

Matrix *doMBFcall_0(PcNode *node) { return callMemberOf(node, callOf<&FuncRecData::call0>); }

Matrix *doMBFcall_1(PcNode *node) { return callMemberOf(node, callOf<&FuncRecData::call1>); }

Matrix *doMBFcall_2(PcNode *node) { return callMemberOf(node, callOf<&FuncRecData::call2>); }

Matrix *doMBFcall_3(PcNode *node) { return callMemberOf(node, callOf<&FuncRecData::call3>); }

Matrix *doMBFcall_7(PcNode *node) { return callMemberOf(node, callOf<&FuncRecData::call7>); }

Matrix *doMBFcall_Np(PcNode *node) { return callMemberOf(node, callNamed); }

}  // namespace vesko

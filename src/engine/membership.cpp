// Membership of a value in a domain. A value of a kind that the domain has no use for is no member, and no
// error.
#include <cmath>

#include "builtins/bfunc.h"
#include "engine/calls.h"
#include "engine/domains.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "values/elements.h"
#include "values/memory.h"

namespace vesko {

namespace {

// ---- Numbers

// The number of a real or integer scalar, or of one byte or bit.
bool plainNumber(const Matrix *m, double &x) {
    if (m->l2type == L2::RS) {
        x = m->rdata[0];
        return true;
    }
    if (m->l2type == L2::IS) {
        x = m->ints()[0];
        return true;
    }
    if (!isByteKind(m->l2type) || m->length != 1) return false;
    x = m->bytes()[0];
    return true;
}

template <class T>
uint32_t positionOf(double x, const T *elements, uint32_t n) {
    for (uint32_t k = 0; k < n; k++)
        if (elements[k] == x) return k + 1;
    return 0;
}

uint32_t positionOfNan(const Matrix *reals) {
    for (uint32_t k = 0; k < reals->length; k++)
        if (std::isnan(reals->rdata[k])) return k + 1;
    return 0;
}

uint32_t positionInRange(double x, const Matrix *range) {
    for (uint32_t k = 0; k < range->length; k++)
        if (range->first() + k * range->step() == x) return k + 1;
    return 0;
}

// Only the first interval of a union is looked at.
bool inFirstInterval(double x, const Matrix *itv) {
    const double *ends = itv->rdata;
    return (ends[0] < x && x < ends[1]) || (x == ends[0] && ends[2] == 1.0) ||
           (x == ends[1] && ends[3] == 1.0);
}

uint32_t positionOfNumber(double x, const Matrix *domain) {
    switch (domain->l2type) {
        case L2::IM:
        case L2::IS: return positionOf(x, domain->ints(), domain->length);
        case L2::BY:
        case L2::BI: return positionOf(x, domain->bytes(), domain->length);
        case L2::RNG: return positionInRange(x, domain);
        case L2::ITV: return inFirstInterval(x, domain);
        default: return std::isnan(x) ? positionOfNan(domain) : positionOf(x, domain->rdata, domain->length);
    }
}

uint32_t positionOfComplex(const Matrix *value, const Matrix *domain) {
    const Matrix *re = domain->re(), *im = domain->im();
    for (uint32_t k = 0; k < re->length; k++)
        if (re->rdata[k] == value->re()->rdata[0] && im->rdata[k] == value->im()->rdata[0]) return k + 1;
    return 0;
}

// ---- Other collections and predicates

uint32_t positionInList(const Matrix *value, const Matrix *list) {
    for (uint32_t k = 0; k < list->length; k++)
        if (are_equal(value, list->entries()[k])) return k + 1;
    return 0;
}

bool isTrueResult(Matrix *result) {
    const bool truth = getMatLogVal(result);
    releaseMat(result);
    return truth;
}

bool builtinHasReal(const Matrix *builtin, double x) {
    const Bfunc *bf = builtin->builtin();
    return bf->row && bf->row->hasReal && bf->row->hasReal(x, bf->parms());
}

Matrix *predicateValue(Matrix *predicate, Matrix *value, PcNode *node) {
    if (predicate->l2type == L2::BF) return callBf(predicate->builtin(), value, node);
    if (isList(value->l2type)) return callUfByList(predicate->func(), value, node);
    return callUfByMat(predicate->func(), value, node);
}

bool inClass(Matrix *value, Matrix *domain, PcNode *node) {
    if (value->l2type != L2::OBJ) return false;
    if (domain->l2type == L2::COND) return validate_membership(value, domain, node);
    return domain->l2type == L2::CLASS && isOfClass(value, domain);
}

// What a pointer points to now; null for what is no pointer, or points into a frame that is gone.
Matrix *pointedTo(const Matrix *value) {
    if (value->l2type == L2::PTR) return value->target();
    if (value->l2type != L2::VARADDR) return nullptr;
    const VarAddr *address = static_cast<VarAddr *>(value->vdata);
    return *address->cell & 1 ? address->var->value : nullptr;
}

// The empty value is a null pointer, which some sets of pointers admit.
uint32_t pointsInto(const Matrix *pointer, const Matrix *pointer_set, PcNode *node) {
    constexpr uint32_t admits_null = 2;
    if (pointer->l2type == L2::NUL) return pointer_set->length == admits_null;
    Matrix *target = pointedTo(pointer);
    return target ? memberOfSet(target, pointer_set->target(), node) : 0;
}

uint32_t inGlobal(Matrix *value, const Matrix *reference, PcNode *node) {
    Matrix *domain = getGv(reference->nrows);
    if (domain->l2type == L2::GV) error_undef_opr2(node);
    return memberOfSet(value, domain, node);
}

}  // namespace

bool hasRealQuickly(const Matrix *domain, double x) {
    switch (domain->l2type) {
        case L2::COMPLETE: return true;
        case L2::BF: return builtinHasReal(domain, x);
        case L2::ITV: return domain->nrows && inFirstInterval(x, domain);
        case L2::IM:
        case L2::IS:
        case L2::RNG:
        case L2::RM:
        case L2::RS:
        case L2::BY:
        case L2::BI: return positionOfNumber(x, domain);
        default: return false;
    }
}

uint32_t memberOfSet(Matrix *value, Matrix *domain, PcNode *node) {
    guardStack();
    double x;
    switch (domain->l2type) {
        case L2::COMPLETE: return 1;
        case L2::ITV:
            if (domain->nrows == 0) return inClass(value, domain, node);
            [[fallthrough]];
        case L2::IM:
        case L2::IS:
        case L2::RNG:
        case L2::RM:
        case L2::RS:
        case L2::BY:
        case L2::BI: return plainNumber(value, x) ? positionOfNumber(x, domain) : 0;
        case L2::CS:
        case L2::CM: return value->l2type == L2::CS ? positionOfComplex(value, domain) : 0;
        case L2::LS:
        case L2::VL: return positionInList(value, domain);
        case L2::UF:
        case L2::BF: return isTrueResult(predicateValue(domain, value, node));
        case L2::FSET: return findSetMemberShip(domain->table(), value) == theTrueMat();
        case L2::CLASS:
        case L2::COND: return inClass(value, domain, node);
        case L2::PTRSET: return pointsInto(value, domain, node);
        case L2::GV: return inGlobal(value, domain, node);
        default: return isTrueResult(getMatProduct(value, domain, node));
    }
}

// ---- The handlers. The operands stay held while a predicate runs.

template <class Test>
static Matrix *testMembership(PcNode *node, Test test) {
    Matrix *value = pinMat(node->eval(0));
    Matrix *domain = pinMat(node->eval(1));
    Matrix *truth = test(value, domain, node);
    releaseMat(unpinMat());
    releaseMat(unpinMat());
    return truth;
}

Matrix *checkListEntry(PcNode *node) {
    return testMembership(
        node, [](Matrix *x, Matrix *domain, PcNode *n) { return truthMat(memberOfSet(x, domain, n) != 0); });
}

// Domains for which the operator means membership. For all others it asks whether the product is true.
static bool testsMembership(L2 t) {
    return isFunction(t) || t == L2::ITV || t == L2::FSET || t == L2::COMPLETE || t == L2::CLASS ||
           t == L2::PTRSET;
}

static bool isMatrixKind(L2 t) { return isNumeric(t) && t != L2::PM && t != L2::BIGINT && t != L2::MPF; }

static Matrix *operatorMembership(Matrix *x, Matrix *domain, PcNode *node) {
    if (testsMembership(domain->l2type)) return truthMat(memberOfSet(x, domain, node) != 0);
    const bool matrices = isMatrixKind(x->l2type) && isMatrixKind(domain->l2type);
    if (matrices && x->nrows != domain->ncols) return theFalseMat();
    return truthMat(isTrueResult(getMatProduct(domain, x, node)));
}

Matrix *checkTreeMemberShip(PcNode *node) { return testMembership(node, operatorMembership); }

}  // namespace vesko

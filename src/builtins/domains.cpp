// Domains: predicates that answer true or false for any value, and never an error.
#include <cmath>

#include "builtins/domain_family.h"
#include "builtins/workers.h"
#include "engine/pins.h"
#include "operators/dispatch.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

// ---- Parameters

static bool acceptsInterval(const Matrix *m) { return m->l2type == L2::ITV || m->l2type == L2::NUL; }
static bool acceptsAnything(const Matrix *) { return true; }
static bool acceptsSize(const Matrix *m) {
    int32_t n;
    return m->l2type == L2::NUL || (extract_integer(m, n) && n > 0);
}

constexpr BfParm domain_parms[3] = {{"m", theEmptyMat, acceptsSize},
                                    {"n", theEmptyMat, acceptsSize},
                                    {"domain", theEmptyMat, acceptsInterval}};
constexpr BfParm interval_parms[1] = {domain_parms[2]};
const BfParm length_parms[2] = {{"length", theEmptyMat, acceptsInterval},
                                {"domain", theEmptyMat, acceptsAnything}};

// Whether x lies in one of the intervals; the null value stands for no restriction. T is the type in which
// the ends are compared.
template <class T>
static bool inUnion(const Matrix *union_, T x) {
    if (union_->l2type != L2::ITV) return true;
    for (uint32_t i = 0; i < union_->nrows; i++) {
        const double *itv = union_->rdata + size_t{i} * union_->ncols;
        const T lower = convertElement<T>(itv[0]), upper = convertElement<T>(itv[1]);
        if ((lower < x && x < upper) || (x == lower && itv[2] == 1.0) || (x == upper && itv[3] == 1.0))
            return true;
    }
    return false;
}

// ---- Scalars

// The number of a real value of one element: a real, an integer, a byte, a bit, or a range of one.
static bool readReal(const Matrix *m, double &x) {
    if (m->length != 1 || !hasPlainElements(m->l2type)) return false;
    x = elementOf(m, 0);
    return true;
}

static bool isRealIn(const Matrix *domain, double x) { return !std::isnan(x) && inUnion(domain, x); }
static bool isWholeIn(const Matrix *domain, double x) {
    return std::isfinite(x) && std::floor(x) == x && inUnion(domain, x);
}

bool R_has(double x, Matrix *const *parms) { return isRealIn(parms[0], x); }
bool Z_has(double x, Matrix *const *parms) { return isWholeIn(parms[0], x); }
bool C_has(double x, Matrix *const *) { return !std::isnan(x); }
bool D_has(double, Matrix *const *) { return true; }

static bool isOne(const Matrix *m, L2 kind) { return m->l2type == kind && m->length == 1; }

Matrix *R_bf(Matrix *args, Matrix **parms, PcNode *) {
    double x;
    return truthMat(readReal(args, x) && R_has(x, parms));
}
Matrix *Z_bf(Matrix *args, Matrix **parms, PcNode *) {
    double x;
    return truthMat(readReal(args, x) && Z_has(x, parms));
}
Matrix *C_bf(Matrix *args, Matrix **, PcNode *) {
    return truthMat(args->length == 1 && everyElement(Element::C, args, theEmptyMat()));
}
Matrix *D_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::RS)); }
Matrix *I_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::IS)); }
Matrix *L_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::BIGINT)); }
Matrix *M_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::MPF)); }
Matrix *B_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::BY)); }
Matrix *DC_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::CS)); }

// ---- Shapes

static uint32_t sizeOr(const Matrix *parm, uint32_t own) {
    int32_t n;
    return extract_integer(parm, n) ? static_cast<uint32_t>(n) : own;
}

// A vector is told by its number of elements alone.
bool fitsShape(const Matrix *m, Shape shape, Matrix *const *sizes) {
    const auto n = [=](uint32_t own) { return shape.size ? shape.size : sizeOr(sizes[0], own); };
    switch (shape.form) {
        case Form::Vector: return m->length == n(m->length);
        case Form::Square: return m->isSquare() && m->nrows == n(m->nrows);
        case Form::Column: return m->ncols == 1 && m->nrows == n(m->nrows);
        case Form::Row: return m->nrows == 1 && m->ncols == n(m->ncols);
        case Form::Matrix: return m->nrows == n(m->nrows) && m->ncols == sizeOr(sizes[1], m->ncols);
    }
    return false;
}

template <class Test>
static bool every(const Matrix *m, Test holds) {
    if (!hasPlainElements(m->l2type)) return false;
    for (uint32_t i = 0; i < m->length; i++)
        if (!holds(elementOf(m, i))) return false;
    return true;
}

static bool everyReal(const Matrix *m, const Matrix *domain) {
    return every(m, [=](double x) { return isRealIn(domain, x); });
}

static bool everyComplex(const Matrix *m) {
    if (m->l2type != L2::CS && m->l2type != L2::CM) return everyReal(m, theEmptyMat());
    return everyReal(m->re(), theEmptyMat()) && everyReal(m->im(), theEmptyMat());
}

// Kinds whose elements are doubles.
static bool isDouble(L2 t) {
    return hasPlainElements(t) && t != L2::IM && t != L2::IS && t != L2::BY && t != L2::BI;
}

bool everyElement(Element element, const Matrix *m, const Matrix *domain) {
    switch (element) {
        case Element::R: return everyReal(m, domain);
        case Element::Z: return every(m, [=](double x) { return isWholeIn(domain, x); });
        case Element::C: return everyComplex(m);
        case Element::D: return isDouble(m->l2type);
        case Element::I: return m->l2type == L2::IS || m->l2type == L2::IM;
        case Element::B: return m->l2type == L2::BY;
        case Element::DC: return m->l2type == L2::CS || m->l2type == L2::CM;
    }
    return false;
}

// ---- Kinds

Matrix *hash_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::HASH); }
Matrix *obj_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::OBJ); }
Matrix *class_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::CLASS); }
Matrix *bf_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::BF); }
Matrix *uf_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::UF); }
Matrix *sparse_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::SPARSE); }

// ---- Strings and lists: a length, and a domain that the string, or each entry, belongs to

static bool hasLength(const Matrix *range, uint32_t length) {
    return inUnion(range, static_cast<int32_t>(length));
}

static bool isMember(Matrix *m, Matrix *domain, PcNode *node) {
    return domain->l2type == L2::NUL || memberOfSet(m, domain, node);
}

Matrix *string_bf(Matrix *args, Matrix **parms, PcNode *node) {
    return truthMat(args->l2type == L2::TX && hasLength(parms[0], args->length) &&
                    isMember(args, parms[1], node));
}

static bool isEveryEntryMember(const Matrix *list, Matrix *domain, PcNode *node) {
    for (uint32_t i = 0; i < list->length; i++)
        if (!isMember(list->entries()[i], domain, node)) return false;
    return true;
}

// The null value counts as one element. The list and the domain are held while a predicate runs.
Matrix *list_bf(Matrix *args, Matrix **parms, PcNode *node) {
    if (args->l2type == L2::NUL) return truthMat(hasLength(parms[0], 1) && isMember(args, parms[1], node));
    if (!isList(args->l2type) || !hasLength(parms[0], args->length)) return theFalseMat();
    Matrix *domain = pinMat(parms[1]);
    pinMat(args);
    const bool good = isEveryEntryMember(args, domain, node);
    unpinMat();
    releaseMat(unpinMat());
    return truthMat(good);
}

}  // namespace vesko

// Domains: predicates that answer true or false for any value, and never an error.
#include <cmath>

#include "builtins/workers.h"
#include "operators/dispatch.h"
#include "values/convert.h"
#include "values/display.h"
#include "values/elements.h"

namespace vesko {

// ---- Parameters

static bool acceptsInterval(const Matrix *m) { return m->l2type == L2::ITV || m->l2type == L2::NUL; }
static bool acceptsAnything(const Matrix *) { return true; }

const BfParm interval_parms[1] = {{"domain", theEmptyMat, acceptsInterval}};
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

static bool isReal(const Matrix *m, const Matrix *domain) {
    double x;
    return readReal(m, x) && !std::isnan(x) && inUnion(domain, x);
}

static bool isWhole(const Matrix *m, const Matrix *domain) {
    double x;
    return readReal(m, x) && std::isfinite(x) && std::floor(x) == x && inUnion(domain, x);
}

static bool isComplex(const Matrix *m) {
    if (m->l2type != L2::CS) return isReal(m, theEmptyMat());
    return !std::isnan(m->re()->rdata[0]) && !std::isnan(m->im()->rdata[0]);
}

static bool isOne(const Matrix *m, L2 kind) { return m->l2type == kind && m->length == 1; }

Matrix *R_bf(Matrix *args, Matrix **parms, PcNode *) { return truthMat(isReal(args, parms[0])); }
Matrix *Z_bf(Matrix *args, Matrix **parms, PcNode *) { return truthMat(isWhole(args, parms[0])); }
Matrix *C_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isComplex(args)); }
Matrix *D_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::RS)); }
Matrix *I_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::IS)); }
Matrix *L_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::BIGINT)); }
Matrix *M_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::MPF)); }
Matrix *B_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::BY)); }
Matrix *DC_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(isOne(args, L2::CS)); }

// ---- Kinds

Matrix *hash_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::HASH); }
Matrix *obj_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::OBJ); }
Matrix *class_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::CLASS); }
Matrix *bf_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::BF); }
Matrix *uf_bf(Matrix *args, Matrix **, PcNode *) { return truthMat(args->l2type == L2::UF); }

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

// The null value counts as one element.
Matrix *list_bf(Matrix *args, Matrix **parms, PcNode *node) {
    if (args->l2type == L2::NUL) return truthMat(hasLength(parms[0], 1) && isMember(args, parms[1], node));
    if (!isList(args->l2type) || !hasLength(parms[0], args->length)) return theFalseMat();
    for (uint32_t i = 0; i < args->length; i++)
        if (!isMember(args->entries()[i], parms[1], node)) return theFalseMat();
    return theTrueMat();
}

// ---- Display settings

// The letter of a format, in lower case; 0 for anything else.
static char formatLetter(const Matrix *m) {
    if (m->l2type != L2::TX || m->length != 1) return 0;
    switch (m->text()[0]) {
        case 'g':
        case 'G': return 'g';
        case 'e':
        case 'E': return 'e';
        default: return 0;
    }
}

static Matrix *applyFormat(const Matrix *m, void (*apply)(char)) {
    const char letter = formatLetter(m);
    if (letter) apply(letter);
    return truthMat(letter);
}

static Matrix *applyDigits(const Matrix *m, void (*apply)(uint32_t)) {
    constexpr int32_t least = 3, most = 17;
    int32_t n;
    const bool good = extract_integer(m, n) && n >= least && n <= most;
    if (good) apply(static_cast<uint32_t>(n));
    return truthMat(good);
}

Matrix *disp_format_domain_bf(Matrix *args, Matrix **, PcNode *) { return applyFormat(args, setDispFormat); }
Matrix *disp_format_scalar_domain_bf(Matrix *args, Matrix **, PcNode *) {
    return applyFormat(args, setDispFormatScalar);
}
Matrix *disp_ndigits_domain_bf(Matrix *args, Matrix **, PcNode *) {
    return applyDigits(args, setDispNdigits);
}
Matrix *disp_ndigits_scalar_domain_bf(Matrix *args, Matrix **, PcNode *) {
    return applyDigits(args, setDispNdigitsScalar);
}

}  // namespace vesko

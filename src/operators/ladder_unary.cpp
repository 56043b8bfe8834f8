// Negation and transpose of the PF kinds. The transpose of a complex value is its conjugate transpose.
#include "builtins/function_algebra.h"
#include "engine/errors.h"
#include "engine/interrupt.h"
#include "operators/ladder.h"
#include "operators/ladders.h"
#include "operators/plain.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {

static Matrix *negatedBytes(const Matrix *m) {
    const bool bits = m->l2type == L2::BI;
    Matrix *result = bits ? newBinaryMat(m->nrows, m->ncols) : newByteMat(m->nrows, m->ncols);
    for (uint32_t k = 0; k < m->length; k++)
        result->bytes()[k] = bits ? m->bytes()[k] : static_cast<uint8_t>(-m->bytes()[k]);
    return result;
}

static Matrix *negatedMultidim(const Matrix *m) {
    const bool real = m->l2type == L2::RMDM;
    Matrix *result = real ? dupRMDM(m) : dupCMDM(m);
    const size_t n = size_t{m->length} * (real ? 1 : 2);
    for (size_t k = 0; k < n; k++) result->rdata[k] = -m->rdata[k];
    return result;
}

static Matrix *negatedList(Matrix *m, PcNode *node) {
    guardStack();
    Matrix *list = newVListMat(m->length);
    for (uint32_t k = 0; k < m->length; k++) addListEntry(list, getMatNeg(m->entries()[k], node));
    return list;
}

static Matrix *negatedComplex(Matrix *m, PcNode *node) {
    Matrix *re = getMatNeg(m->re(), node);
    return newCompMat(re, getMatNeg(m->im(), node));
}

Matrix *negPF(Matrix *m, PcNode *node) {
    switch (m->l2type) {
        case L2::RNG: return newRngMat(m->nrows, m->ncols, -m->first(), -m->step());
        case L2::BY:
        case L2::BI: return negatedBytes(m);
        case L2::UPPER:
        case L2::LOWER:
        case L2::SYMM:
        case L2::PM: return negRM(m, node);
        case L2::BAND:
        case L2::SPARSE:
        case L2::BIGINT:
        case L2::MPF: error_kind_not_built(node, m->l2type);
        case L2::CS:
        case L2::CM: return negatedComplex(m, node);
        case L2::LS:
        case L2::VL: return negatedList(m, node);
        case L2::UF:
        case L2::BF: return newFNegBfMat(m);
        case L2::RMDM:
        case L2::CMDM: return negatedMultidim(m);
        default: error_undef_opr(node, m, NodeKind::Negative);
    }
}

static Matrix *transposedAs(Matrix *m, L2 tag, PcNode *node) {
    Matrix *result = trsRM(m, node);
    result->l1type = L1::PF;
    result->l2type = tag;
    return result;
}

static Matrix *transposedComplex(Matrix *m, PcNode *node) {
    if (m->l2type == L2::CS) return newCompScalarMat(m->re()->rdata[0], -m->im()->rdata[0]);
    Matrix *re = trsRM(m->re(), node);
    return newCompMat(re, ntrsRM(m->im()));
}

Matrix *trsPF(Matrix *m, PcNode *node) {
    switch (m->l2type) {
        case L2::RNG: return newRngMat(m->ncols, m->nrows, m->first(), m->step());
        case L2::UPPER: return transposedAs(m, L2::LOWER, node);
        case L2::LOWER: return transposedAs(m, L2::UPPER, node);
        case L2::SYMM: return transposedAs(m, L2::SYMM, node);
        case L2::PM: return trsRM(m, node);
        case L2::BAND:
        case L2::SPARSE: error_kind_not_built(node, m->l2type);
        case L2::CS:
        case L2::CM: return transposedComplex(m, node);
        default: error_undef_opr(node, m, NodeKind::Transpose);
    }
}

}  // namespace vesko

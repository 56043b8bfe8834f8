// Three or more indices: reading out of multidimensional matrices, and the brackets of functions and objects.
#include "operators/index_multidim.h"

#include <algorithm>

#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "operators/index.h"
#include "operators/index_source.h"
#include "values/containers.h"
#include "values/elements.h"

namespace vesko {

MultidimPlaces openPlaces(const Vector *extents, const Matrix *values, PcNode *indices) {
    const uint32_t n = extents->size;
    MultidimPlaces p{n, 1, 0, nullptr, nullptr, newListMat(n), nullptr};
    p.scratch = allocGMat(n * (sizeof(IndexRun) + sizeof(uint32_t)));
    p.runs = static_cast<IndexRun *>(p.scratch->vdata);
    p.strides = reinterpret_cast<uint32_t *>(p.runs + n);
    for (uint32_t d = 0; d < n; d++) {
        uint32_t max;
        const auto extent = static_cast<uint32_t>(extents->numberAt(d));
        Matrix *index = chkIndxMat(values->entries()[d], extent, max, indices->child(d));
        addListEntry(p.indices, index);
        p.runs[d] = indexRun(index);
        p.count = checkedLength(p.count, p.runs[d].length);
        if (p.runs[d].length > 1) p.nmany++;
    }
    uint32_t stride = 1;
    for (uint32_t d = n; d-- > 0; stride *= static_cast<uint32_t>(extents->numberAt(d)))
        p.strides[d] = stride;
    return p;
}

void closePlaces(const MultidimPlaces &places) {
    releaseMat(places.indices);
    releaseMat(places.scratch);
}

namespace {

// With at most two indices that are not single the result is an ordinary matrix: those two are its rows and
// columns. A lone one gives a row if it is the last index, else a column.
void matrixShape(const MultidimPlaces &p, uint32_t &rows, uint32_t &cols) {
    rows = cols = 1;
    bool seen = false;
    for (uint32_t d = 0; d < p.levels; d++) {
        const uint32_t n = p.runs[d].length;
        if (n == 1) continue;
        const bool lone_last = p.nmany == 1 && d + 1 == p.levels;
        (seen || lone_last ? cols : rows) = n;
        seen = true;
    }
}

void takeMdmSubMat(double *to, const double *from, const MultidimPlaces &p) {
    p.walk([=](uint32_t k, uint32_t place) { to[k] = from[place]; });
}

Matrix *takeMatrix(const Matrix *m, const MultidimPlaces &p) {
    uint32_t rows, cols;
    matrixShape(p, rows, cols);
    Matrix *re = allocRealMat(p.count, rows, cols);
    takeMdmSubMat(re->rdata, m->rdata, p);
    if (m->l2type == L2::RMDM) return re;
    Matrix *im = allocRealMat(p.count, rows, cols);
    takeMdmSubMat(im->rdata, m->rdata + m->length, p);
    return newCompMat(re, im);
}

Matrix *takeMultidim(const Matrix *m, const MultidimPlaces &p) {
    Vector *extents = newVector(p.levels);
    for (uint32_t d = 0; d < p.levels; d++) addElement(extents, asEntry(p.runs[d].length));
    const bool complex = m->l2type == L2::CMDM;
    Matrix *result = complex ? newCMDM_Mat(p.count, extents) : newRMDM_Mat(p.count, extents);
    takeMdmSubMat(result->rdata, m->rdata, p);
    if (complex) takeMdmSubMat(result->rdata + p.count, m->rdata + m->length, p);
    return result;
}

Matrix *readMultidim(Matrix *m, PcNode *node) {
    PcNode *indices = node->child(1);
    if (extentsOf(m)->size != indices->ncub) error_undef_opr(node, m, NodeKind::RefMd);
    Matrix *values = evalArgVec(indices);
    const MultidimPlaces p = openPlaces(extentsOf(m), values, indices);
    Matrix *result = p.count == 0 ? theEmptyMat() : p.nmany > 2 ? takeMultidim(m, p) : takeMatrix(m, p);
    closePlaces(p);
    releaseMat(values);
    return result;
}

}  // namespace

Matrix *getMatRefMd(PcNode *node) {
    Matrix *m = pinMat(node->eval(0));
    Matrix *result = isMultidim(m) ? readMultidim(m, node) : answerIndices(m, node);
    keepResult(result);
    releaseMat(unpinMat());
    return passResult(result);
}

Matrix *getMatRef3(PcNode *node) { return getMatRefMd(node); }

// ---- Stores

namespace {

// The extents above 1 of a value, in order, must be the lengths of the indices that are not single.
bool hasLengths(const MultidimPlaces &p, const Matrix *value) {
    const bool multidim = isMultidim(value);
    const uint32_t matrix_extents[] = {value->nrows, value->ncols};
    const uint32_t n = multidim ? extentsOf(value)->size : 2;
    uint32_t d = 0;
    for (uint32_t e = 0; e < n; e++) {
        const uint32_t extent =
            multidim ? static_cast<uint32_t>(extentsOf(value)->numberAt(e)) : matrix_extents[e];
        if (extent == 1) continue;
        while (d < p.levels && p.runs[d].length == 1) d++;
        if (d == p.levels || p.runs[d++].length != extent) return false;
    }
    while (d < p.levels && p.runs[d].length == 1) d++;
    return d == p.levels;
}

void asgnMdmRef(double *to, const MultidimPlaces &p, const Matrix *value) {
    Source<double> source;
    openSource(source, value);
    p.walk([&](uint32_t k, uint32_t place) { to[place] = source(k); });
    closeSource(source);
}

// The imaginary parts of a complex value, or 0 for all places.
void asgnMdmImag(double *to, const MultidimPlaces &p, const Matrix *value) {
    if (value->l2type == L2::CMDM) {
        const double *from = value->rdata + value->length;
        p.walk([=](uint32_t k, uint32_t place) { to[place] = from[k]; });
        return;
    }
    asgnMdmRef(to, p, isComplex(value->l2type) ? value->im() : theFalseMat());
}

void asgnMdmReal(double *to, const MultidimPlaces &p, const Matrix *value) {
    if (value->l2type == L2::CMDM)
        p.walk([=, from = value->rdata](uint32_t k, uint32_t place) { to[place] = from[k]; });
    else
        asgnMdmRef(to, p, isComplex(value->l2type) ? value->re() : value);
}

bool isComplexValue(const Matrix *m) { return isComplex(m->l2type) || m->l2type == L2::CMDM; }

Matrix *toComplexMultidim(const Matrix *m) {
    Matrix *complex = dupCMDM(m);
    std::copy_n(m->rdata, m->length, complex->rdata);
    std::fill_n(complex->rdata + m->length, m->length, 0.0);
    return complex;
}

}  // namespace

Matrix *storeMultidim(Matrix *m, const MultidimPlaces &places, Matrix *value, PcNode *node) {
    if (!isNumeric(value->l2type) && !isMultidim(value)) error_ref3asgn(node, true);
    if (value->length != 1 && !hasLengths(places, value)) error_ref3asgn_size_nomatch(node);
    const bool plain = !isRealLike(value->l2type) || hasPlainElements(value->l2type);
    Matrix *source = plain ? value : convToDb(value);
    if (m->l2type == L2::RMDM && isComplexValue(source)) m = toComplexMultidim(m);
    asgnMdmReal(m->rdata, places, source);
    if (m->l2type == L2::CMDM) asgnMdmImag(m->rdata + m->length, places, source);
    if (!plain) releaseMat(source);
    return m;
}

}  // namespace vesko

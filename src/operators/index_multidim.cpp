// Three or more indices: reading out of multidimensional matrices, and the brackets of functions and objects.
#include "operators/index_multidim.h"

#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "operators/index.h"
#include "values/containers.h"

namespace vesko {

static Vector *extentsOf(const Matrix *m) { return static_cast<Vector *>(m->vdata); }

// Each index is checked against its extent. Indices are evaluated one by one, each held while the next is.
MultidimPlaces openPlaces(const Vector *extents, PcNode *indices) {
    const uint32_t n = extents->size;
    MultidimPlaces p{n, 1, 0, nullptr, nullptr, newListMat(n), nullptr};
    p.scratch = allocGMat(n * (sizeof(IndexRun) + sizeof(uint32_t)));
    p.runs = static_cast<IndexRun *>(p.scratch->vdata);
    p.strides = reinterpret_cast<uint32_t *>(p.runs + n);
    for (uint32_t d = 0; d < n; d++) {
        uint32_t max;
        Matrix *index = chkEvalIndxMat(indices->child(d), static_cast<uint32_t>(extents->numberAt(d)), max);
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

bool isMultidim(const Matrix *m) { return m->l2type == L2::RMDM || m->l2type == L2::CMDM; }

Matrix *readMultidim(Matrix *m, PcNode *node) {
    PcNode *indices = node->child(1);
    if (extentsOf(m)->size != indices->ncub) error_undef_opr(node, m, NodeKind::RefMd);
    const MultidimPlaces p = openPlaces(extentsOf(m), indices);
    Matrix *result = p.count == 0 ? theEmptyMat() : p.nmany > 2 ? takeMultidim(m, p) : takeMatrix(m, p);
    closePlaces(p);
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

}  // namespace vesko

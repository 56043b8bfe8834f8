// Indexed read: the elements that an index form touches, taken into a new value of the operand's kind.
#include <cassert>

#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "operators/index.h"
#include "operators/index_walk.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {

namespace {

template <class T>
void gather(T *to, const T *from, const IndexedPlaces &where, uint32_t ncols) {
    where.walk(ncols, [=](uint32_t k, uint32_t place) { to[k] = from[place]; });
}

Matrix *gatherReals(const double *from, const IndexedPlaces &where, uint32_t ncols, uint32_t rows,
                    uint32_t cols) {
    Matrix *result = allocRealMat(rows * cols, rows, cols);
    gather(result->rdata, from, where, ncols);
    return result;
}

Matrix *gatherRange(const Matrix *m, const IndexedPlaces &where, uint32_t rows, uint32_t cols) {
    Matrix *result = allocRealMat(rows * cols, rows, cols);
    where.walk(m->ncols, [to = result->rdata, first = m->first(), step = m->step()](uint32_t k, uint32_t i) {
        to[k] = first + i * step;
    });
    return result;
}

Matrix *gatherBytes(Matrix *result, const Matrix *m, const IndexedPlaces &where) {
    gather(result->bytes(), m->bytes(), where, m->ncols);
    return result;
}

// The elements as a rows by cols value of m's kind; structure is not kept. A string gives a string.
Matrix *takePlaces(const Matrix *m, const IndexedPlaces &where, uint32_t rows, uint32_t cols, PcNode *node) {
    const uint32_t n = where.count();
    if (n == 0) return theEmptyMat();
    switch (m->l2type) {
        case L2::IM:
        case L2::IS: {
            Matrix *result = newIntMat(rows, cols);
            gather(result->ints(), m->ints(), where, m->ncols);
            return result;
        }
        case L2::RNG: return gatherRange(m, where, rows, cols);
        case L2::BY: return gatherBytes(newByteMat(rows, cols), m, where);
        case L2::BI: return gatherBytes(newBinaryMat(rows, cols), m, where);
        case L2::TX: return gatherBytes(newStrMat(n + 1), m, where);
        case L2::BAND: error_not_built(node, "band matrices");
        case L2::SPARSE: error_not_built(node, "sparse matrices");
        case L2::BIGINT: error_not_built(node, "big integers");
        case L2::MPF: error_not_built(node, "multi-precision floats");
        case L2::CS:
        case L2::CM: {
            Matrix *re = gatherReals(m->re()->rdata, where, m->ncols, rows, cols);
            return newCompMat(re, gatherReals(m->im()->rdata, where, m->ncols, rows, cols));
        }
        default: return gatherReals(m->rdata, where, m->ncols, rows, cols);
    }
}

bool isVector(const Matrix *m) { return m->nrows == 1 || m->ncols == 1; }

// A row or column gives its own orientation to what a vector of indices takes out of it; in all other cases
// the result has the shape of the index.
Matrix *takeFlat(Matrix *m, const IndexedPlaces &where, const Matrix *index, PcNode *node) {
    const uint32_t n = where.count();
    if (isVector(index) && m->nrows == 1) return takePlaces(m, where, 1, n, node);
    if (isVector(index) && m->ncols == 1) return takePlaces(m, where, n, 1, node);
    return takePlaces(m, where, index->nrows, index->ncols, node);
}

Matrix *matRefFlat(Matrix *m, Matrix *value, PcNode *node) {
    uint32_t max;
    Matrix *index = chkIndxMat(value, m->length, max, node);
    IndexedPlaces where{IndexForm::Flat, indexRun(index), {}, max, 0};
    Matrix *result = takeFlat(m, where, index, node);
    // Several elements of a binary matrix come as bytes.
    if (result->l2type == L2::BI && result->length > 1) result->l2type = L2::BY;
    if (index != value) releaseMat(index);
    return result;
}

Matrix *setMember(Matrix *set, Matrix *value, PcNode *node) {
    int32_t i;
    if (!extract_integer(value, i)) error_index(node, value, 0);
    return setMemberAt(set->table(), chkSingleIndex(value, set->table()->count(), node) - 1);
}

Matrix *hashPair(Matrix *hash, Matrix *value, PcNode *node) {
    const hashnode *pair = hash->table()->node(chkSingleIndex(value, hash->table()->count(), node) - 1);
    return makeBiMatVec(pair->key, pair->data);
}

// Releases what a read worked on, the last pin first; the result may be a part of it.
Matrix *releaseBehind(Matrix *result, Matrix *index) {
    keepResult(result);
    releaseMat(index);
    releaseMat(unpinMat());
    return passResult(result);
}

// An element of the kinds that numeric loops read most; null for the others.
Matrix *scalarAt(const Matrix *m, uint32_t i) {
    if (m->l1type == L1::RM) return newRealScalarMat(m->rdata[i]);
    if (m->l1type == L1::IM) return newIntScalarMat(m->ints()[i]);
    return nullptr;
}

Matrix *quickElement(const Matrix *m, const Matrix *index) {
    uint32_t i;
    return quickIndex(index, m->length, i) ? scalarAt(m, i) : nullptr;
}

bool answersIndex(const Matrix *m) { return isFunction(m->l2type) || m->l2type == L2::OBJ; }

Matrix *answerIndex(Matrix *m, Matrix *values, PcNode *node) {
    return m->l2type == L2::OBJ ? objectRef(m, values, node) : spawnFunction(m, values, node);
}

Matrix *listOfOne(Matrix *value) {
    Matrix *list = newListMat(1);
    addListEntry(list, value);
    return list;
}

}  // namespace

// The node is that of the index, for errors in it.
static Matrix *matRefAt(Matrix *m, Matrix *index, PcNode *node, PcNode *index_node) {
    switch (m->l2type) {
        case L2::FSET: return setMember(m, index, index_node);
        case L2::HASH: return hashPair(m, index, index_node);
        case L2::TX: return matRefFlat(m, index, index_node);
        default: break;
    }
    if (!isNumeric(m->l2type)) error_undef_opr(node, m, NodeKind::Ref);
    return matRefFlat(m, index, index_node);
}

Matrix *matRef(Matrix *m, Matrix *index, PcNode *node) { return matRefAt(m, index, node, node); }

Matrix *getMatRef(PcNode *node) {
    Matrix *m = pinMat(node->eval(0));
    Matrix *index = node->eval(1);
    if (Matrix *element = quickElement(m, index)) return releaseBehind(element, index);
    if (answersIndex(m)) {
        index = listOfOne(index);
        return releaseBehind(answerIndex(m, index, node), index);
    }
    return releaseBehind(matRefAt(m, index, node, node->child(1)), index);
}

Matrix *getMatVecComponent(Matrix *m, uint32_t k) {
    if (isList(m->l2type)) return m->entries()[k];
    const IndexedPlaces where{IndexForm::Flat, IndexRun::spaced(1, k + 1.0, 0), {}, k + 1, 0};
    return takePlaces(m, where, 1, 1, nullptr);
}

// ---- Two indices

namespace {

Matrix *takeBlock(Matrix *m, const IndexedPlaces &where, PcNode *node) {
    return takePlaces(m, where, where.rows.length, where.cols.length, node);
}

Matrix *takePairs(Matrix *m, const IndexedPlaces &where, PcNode *node) {
    const uint32_t rows = where.rows.length, cols = where.cols.length;
    if (rows == 0 || cols == 0) return theEmptyMat();
    if (rows != cols && rows != 1 && cols != 1) error_match_pairs(node, rows, cols);
    return takePlaces(m, where, where.count(), 1, node);
}

Matrix *takeForm(IndexForm form, Matrix *m, const Matrix *rows, const Matrix *cols, PcNode *node) {
    IndexedPlaces where{form, indexRun(rows), indexRun(cols), 0, 0};
    return form == IndexForm::Block ? takeBlock(m, where, node) : takePairs(m, where, node);
}

Matrix *readForm(IndexForm form, Matrix *m, PcNode *indices, PcNode *node) {
    uint32_t max;
    Matrix *rows = pinMat(chkEvalIndxMat(indices->child(0), m->nrows, max));
    Matrix *cols = chkEvalIndxMat(indices->child(1), m->ncols, max);
    Matrix *result = takeForm(form, m, rows, cols, node);
    releaseMat(cols);
    releaseMat(unpinMat());
    return result;
}

Matrix *readDense(IndexForm form, PcNode *node, Matrix *(*other)(Matrix *, PcNode *)) {
    Matrix *m = pinMat(node->eval(0));
    Matrix *result = isNumeric(m->l2type) ? readForm(form, m, node->child(1), node) : other(m, node);
    keepResult(result);
    releaseMat(unpinMat());
    return passResult(result);
}

Matrix *refuseIndex(Matrix *m, PcNode *node) { error_undef_opr(node, m, NodeKind::Ref2); }

}  // namespace

Matrix *answerIndices(Matrix *m, PcNode *node) {
    if (!answersIndex(m)) error_undef_opr(node, m, NodeKind::Ref2);
    Matrix *values = evalArgVec(node->child(1));
    Matrix *result = answerIndex(m, values, node);
    releaseMat(values);
    return result;
}

Matrix *getMatRef2(PcNode *node) { return readDense(IndexForm::Block, node, answerIndices); }
Matrix *getMatRefM(PcNode *node) { return readDense(IndexForm::Pairs, node, refuseIndex); }

Matrix *matRef2(Matrix *m, Matrix *rows, Matrix *cols, PcNode *node) {
    if (!isNumeric(m->l2type)) error_undef_opr(node, m, NodeKind::Ref2);
    uint32_t max;
    Matrix *i = chkIndxMat(rows, m->nrows, max, node);
    Matrix *j = chkIndxMat(cols, m->ncols, max, node);
    Matrix *result = takeForm(IndexForm::Block, m, i, j, node);
    if (i != rows) releaseMat(i);
    if (j != cols) releaseMat(j);
    return result;
}

// ---- Diagonals

namespace {

bool isScalarKind(const Matrix *m) {
    return m->l2type == L2::IS || m->l2type == L2::RS || m->l2type == L2::CS;
}

void checkDiagonal(const Matrix *m, PcNode *node) {
    if (!isNumeric(m->l2type) || m->l2type == L2::RNG) error_undef_opr(node, m, NodeKind::Ref);
    if (!m->isSquare()) error_mat_no_square(node, node->child(0));
}

Matrix *takeDiagonalAt(Matrix *m, PcNode *index_node, PcNode *node) {
    uint32_t max;
    Matrix *index = chkEvalDiagIndxMat(index_node, m->nrows, max);
    const IndexRun run = indexRun(index);
    IndexedPlaces where{IndexForm::Pairs, run, run, max, max};
    const bool column = isVector(index);
    Matrix *result =
        takePlaces(m, where, column ? run.length : index->nrows, column ? 1 : index->ncols, node);
    releaseMat(index);
    return result;
}

}  // namespace

Matrix *getMatDiag(PcNode *node) {
    Matrix *m = node->eval(0);
    checkDiagonal(m, node);
    if (isScalarKind(m)) return m;
    const uint32_t n = m->nrows;
    IndexedPlaces where{IndexForm::Flat, IndexRun::spaced(n, 1, n + 1.0), {}, m->length, 0};
    Matrix *result = takePlaces(m, where, n, 1, node);
    releaseMat(m);
    return result;
}

Matrix *getMatDiagM(PcNode *node) {
    Matrix *m = pinMat(node->eval(0));
    checkDiagonal(m, node);
    Matrix *result = takeDiagonalAt(m, node->child(1)->child(1), node);
    releaseMat(unpinMat());
    return result;
}

// ---- Real scalars as indices of a variable: a variable of the domain Class_D or a literal

Matrix *getMatRef_v_vrs(PcNode *node) {
    const Matrix *m = node->eval(0);
    Matrix *element = quickElement(m, node->eval(1));
    return element ? element : getMatRef(node);
}

Matrix *getMatRef2_v_vrs(PcNode *node) {
    const Matrix *m = node->eval(0);
    PcNode *indices = node->child(1);
    uint32_t i, j;
    if (quickIndex(indices->eval(0), m->nrows, i) && quickIndex(indices->eval(1), m->ncols, j))
        if (Matrix *element = scalarAt(m, i * m->ncols + j)) return element;
    return getMatRef2(node);
}

}  // namespace vesko

// The concatenators: one placement of blocks, for every element type and both directions.
#include "values/concat.h"

#include "engine/errors.h"
#include "values/elements.h"

namespace vesko {

// ---- Placement

// One block into a matrix of `cols` columns, its top left corner at `dst`.
template <class T>
static void placeBlock(T *dst, uint32_t cols, const Matrix *block) {
    if (block->ncols == cols) return copyElements(dst, block, 0, block->length);
    for (uint32_t i = 0; i < block->nrows; i++, dst += cols)
        copyElements(dst, block, i * block->ncols, block->ncols);
}

// Each block in turn; partOf(block) is what is copied of it, or null to leave its place alone.
template <class T, class Part>
static void placeBlocks(T *dst, uint32_t cols, const Matrix *list, Stacking stacking, Part partOf) {
    for (uint32_t k = 0; k < list->length; k++) {
        const Matrix *block = list->entries()[k];
        if (const Matrix *part = partOf(block)) placeBlock(dst, cols, part);
        dst += stacking == Stacking::Vertical ? block->length : block->ncols;
    }
}

template <class T>
static Matrix *catInto(Matrix *result, T *data, const Matrix *list, Stacking stacking) {
    placeBlocks(data, result->ncols, list, stacking, [](const Matrix *block) { return block; });
    return result;
}

static Matrix *catComplex(const Matrix *list, uint32_t rows, uint32_t cols, Stacking stacking) {
    Matrix *re = newZerosMat(rows, cols), *im = newZerosMat(rows, cols);
    placeBlocks(re->rdata, cols, list, stacking,
                [](const Matrix *block) { return isComplex(block->l2type) ? block->re() : block; });
    placeBlocks(im->rdata, cols, list, stacking, [](const Matrix *block) -> const Matrix * {
        return isComplex(block->l2type) ? block->im() : nullptr;
    });
    return newCompMat(re, im);
}

// ---- By kind of the result

Matrix *catBlocks(BlockKind kind, const Matrix *list, uint32_t rows, uint32_t cols, Stacking stacking,
                  PcNode *node) {
    const uint32_t length = checkedLength(rows, cols);
    switch (kind) {
        case BlockKind::Real: {
            Matrix *m = allocRealMat(length, rows, cols);
            return catInto(m, m->rdata, list, stacking);
        }
        case BlockKind::Int: {
            Matrix *m = newIntMat(rows, cols);
            return catInto(m, m->ints(), list, stacking);
        }
        case BlockKind::Byte: {
            Matrix *m = newByteMat(rows, cols);
            return catInto(m, m->bytes(), list, stacking);
        }
        case BlockKind::Binary: {
            Matrix *m = newBinaryMat(rows, cols);
            return catInto(m, m->bytes(), list, stacking);
        }
        case BlockKind::Complex: return catComplex(list, rows, cols, stacking);
        case BlockKind::BigInt: error_not_built(node, "big integers");
        case BlockKind::Mpf: error_not_built(node, "multi-precision floats");
        case BlockKind::String: return catstrings(list);
        case BlockKind::Function:
        case BlockKind::None: break;
    }
    __builtin_unreachable();
}

}  // namespace vesko

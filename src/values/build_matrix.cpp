// Matrix literals: rows of blocks and stacks of rows. The kind of the result rises block by block.
#include <cstring>

#include "builtins/function_algebra.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "values/concat.h"
#include "values/containers.h"
#include "values/elements.h"

namespace vesko {

namespace {

constexpr BlockKind kindOf(L2 t) {
    switch (t) {
        case L2::IM:
        case L2::IS: return BlockKind::Int;
        case L2::BY: return BlockKind::Byte;
        case L2::BI: return BlockKind::Binary;
        case L2::BIGINT: return BlockKind::BigInt;
        case L2::MPF: return BlockKind::Mpf;
        case L2::CS:
        case L2::CM: return BlockKind::Complex;
        case L2::UF:
        case L2::BF: return BlockKind::Function;
        case L2::TX: return BlockKind::String;
        default: return isRealLike(t) ? BlockKind::Real : BlockKind::None;
    }
}

// The kind of what has been joined so far (row) raised by a further block (column). None: they do not join.
// Extended precision is dropped when it meets anything else.
constexpr BlockKind I = BlockKind::Int, R = BlockKind::Real, B = BlockKind::Byte, N = BlockKind::Binary,
                    G = BlockKind::BigInt, M = BlockKind::Mpf, C = BlockKind::Complex,
                    F = BlockKind::Function, S = BlockKind::String, X = BlockKind::None;
constexpr BlockKind raised[n_block_kinds][n_block_kinds] = {
    // Int Real Byte Binary BigInt Mpf Complex Function String
    {I, R, I, I, R, R, C, F, X},  // Int
    {R, R, R, R, R, R, C, F, X},  // Real
    {I, R, B, B, R, R, C, F, X},  // Byte
    {I, R, B, N, R, R, C, F, X},  // Binary
    {R, R, R, R, G, R, C, F, X},  // BigInt
    {R, R, R, R, R, M, C, F, X},  // Mpf
    {C, C, C, C, C, C, C, F, X},  // Complex
    {F, F, F, F, F, F, F, F, F},  // Function
    {X, X, X, X, X, X, X, F, S},  // String
};

BlockKind raise(BlockKind so_far, BlockKind block) {
    if (so_far == BlockKind::None || block == BlockKind::None) return block;
    return raised[static_cast<unsigned>(so_far)][static_cast<unsigned>(block)];
}

// The join under construction: the kind and, unless functions are among the blocks, the sizes.
struct Join {
    PcNode *node;
    Stacking stacking;
    BlockKind kind = BlockKind::None;
    uint64_t across = 0;  // common size: columns of stacked blocks, rows of blocks side by side
    uint64_t along = 0;   // the sum of the other sizes

    // A string stands in a row of strings only.
    BlockKind startOrRaise(const Matrix *block) const {
        const BlockKind b = kindOf(block->l2type);
        if (kind == BlockKind::None && b == BlockKind::String && stacking == Stacking::Vertical)
            return BlockKind::None;
        return raise(kind, b);
    }

    void add(const Matrix *block) {
        const bool first = kind == BlockKind::None;
        kind = startOrRaise(block);
        if (kind == BlockKind::None) error_mat_element_type(node, getdatatypestr(block->l2type));
        if (kind == BlockKind::Function || kind == BlockKind::String) return;
        const bool vertical = stacking == Stacking::Vertical;
        const uint32_t size = vertical ? block->ncols : block->nrows;
        if (first) across = size;
        if (size != across) error_mat_building(node, size, across);
        along += vertical ? block->nrows : block->ncols;
    }

    // What joins as reals is read element by element: blocks of other storage are expanded first.
    void expandBlocks(Matrix *list) const {
        if (kind != BlockKind::Real && kind != BlockKind::Complex) return;
        for (uint32_t k = 0; k < list->length; k++) {
            Matrix *&block = list->entries()[k];
            if (isRealLike(block->l2type) && !hasPlainElements(block->l2type))
                replaceMat(block, convToDb(block));
        }
    }

    Matrix *finish(Matrix *list) const {
        if (kind == BlockKind::Function) return joinFunctions(list);
        expandBlocks(list);
        const uint32_t sum = checkedLength(along, 1);
        return stacking == Stacking::Vertical ? catBlocks(kind, list, sum, across, stacking, node)
                                              : catBlocks(kind, list, across, sum, stacking, node);
    }
};

// Blocks of no kind of their own are left out; a join of nothing else ends in the last one's error.
Matrix *joinBlocks(PcNode *node, Stacking stacking) {
    Matrix *list = newListMat(node->ncub);
    Join join{node, stacking};
    for (uint32_t k = 0; k < node->ncub; k++) {
        Matrix *block = node->eval(k);
        const bool last_chance = k + 1 == node->ncub && join.kind == BlockKind::None;
        if (block->l2type == L2::NUL && !last_chance) continue;
        addListEntry(list, block);
        join.add(block);
    }
    Matrix *result = join.finish(list);
    releaseMat(list);
    return result;
}

}  // namespace

Matrix *buildMat(PcNode *node) { return joinBlocks(node, Stacking::Vertical); }
Matrix *buildMatCol(PcNode *node) { return joinBlocks(node, Stacking::Horizontal); }

}  // namespace vesko

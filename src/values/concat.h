// Concatenation of blocks, side by side or one above the other.
#pragma once

#include <cstdint>

#include "values/matrix.h"

namespace vesko {

// What a matrix literal makes of its blocks.
enum class BlockKind : uint8_t { Int, Real, Byte, Binary, BigInt, Mpf, Complex, Function, String, None };
constexpr unsigned n_block_kinds = 9;  // those before None

enum class Stacking { Vertical, Horizontal };

// The blocks of `list`, converted to `kind`, as one matrix of rows by cols, which they fill exactly. Strings
// are joined, whatever the sizes. Functions have no elements to join.
Matrix *catBlocks(BlockKind kind, const Matrix *list, uint32_t rows, uint32_t cols, Stacking stacking,
                  PcNode *node);

}  // namespace vesko

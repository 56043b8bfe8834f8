// Members: what stands behind a dot.
#pragma once

#include <cstdint>

#include "engine/node.h"

namespace vesko {

// A field of a value by its index: the value itself for plain fields, the result for computed ones; borrowed.
// theDneMat when the value has no such field.
Matrix *getMatField(Matrix *m, uint32_t field, PcNode *node);

// Reading field nodes without running what an auto field computes.
Matrix *getStructFieldFunc(PcNode *node);
Matrix *getForcedFieldFunc(PcNode *node);
Matrix *getParFieldFunc(PcNode *node);

}  // namespace vesko

// Automatic fields: what values answer to the dot without a call. The rows are in auto_fields.def.
#pragma once

#include <cstdint>

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

// Answers a field of the value: borrowed, perhaps the value itself. The value is kept alive by the caller.
using AutoFieldFn = Matrix *(*)(Matrix *m, PcNode *node);

Matrix *readAutoField(Matrix *m, uint32_t field, PcNode *node);  // null if there is no such field

#define AUTO_FIELD(field, owners, function) Matrix *function(Matrix *m, PcNode *node);
#include "members/auto_fields.def"
#undef AUTO_FIELD

}  // namespace vesko

// Handlers of rooms that are not built yet. Each raises an error that says so.
#include "engine/errors.h"
#include "engine/handlers.h"

namespace vesko {

#define PENDING(handler, what) \
    Matrix *handler(PcNode *node) { error_not_built(node, what); }

PENDING(buildConditional, "a conditional class")

#undef PENDING

}  // namespace vesko

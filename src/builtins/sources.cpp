// Built-ins that run source files: the file goes on top of the source stack, and its commands are the next
// ones.
#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "console/command.h"
#include "console/message.h"
#include "frontend/source.h"

namespace vesko {

// A file that is not found is a message, not an error.
static Matrix *pushSource(const char *builtin, Matrix *name, PcNode *node) {
    if (name->l2type != L2::TX) refuseArgument(node, builtin);
    if (std::FILE *file = openXFile(name->text()))
        updateCurrentFile(name, file);
    else
        xMesg("Cannot open file \"%s\"", name->text());
    return theNullMat();
}

Matrix *run_bf(Matrix *args, Matrix **, PcNode *node) { return pushSource("run", args, node); }
Matrix *with_bf(Matrix *args, Matrix **, PcNode *node) { return pushSource("with", args, node); }

}  // namespace vesko

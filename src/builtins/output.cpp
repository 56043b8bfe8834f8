// Showing values, waiting for the user, and errors that a program raises itself.
#include "builtins/arguments.h"
#include "builtins/waiting.h"
#include "builtins/workers.h"
#include "console/worksheet.h"
#include "engine/errors.h"
#include "values/display.h"

namespace vesko {

static Matrix *shown(Matrix *x) {
    dispMat(x);
    return theNullMat();
}

Matrix *print_bf(Matrix *x, Matrix **, PcNode *) { return shown(x); }
Matrix *disp_bf(Matrix *x, Matrix **, PcNode *) { return shown(x); }

// A number of seconds, or until Enter, with or without a text before it.
Matrix *pause_bf(Matrix *args, Matrix **, PcNode *node) {
    double s;
    if (readDuration(args, s)) {
        waitSeconds(s);
        return theNullMat();
    }
    if (args->l2type != L2::TX && argCount(args) != 0) refuseArgument(node, "pause");
    if (args->l2type == L2::TX) dispMat(args);
    uint32_t start, end;
    getLine("", start, end);  // any line will do; at the end of the input there is nothing to wait for
    return theNullMat();
}

// An error of the program's own, which a try catches like any other.
Matrix *panic_bf(Matrix *text, Matrix **, PcNode *node) {
    if (argCount(text) == 0) error_panic(node, "panic");
    if (text->l2type != L2::TX) refuseArgument(node, "panic");
    error_panic(node, text->text());
}

}  // namespace vesko

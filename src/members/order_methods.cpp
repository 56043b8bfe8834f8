// Methods that change the order of elements, or elements by what they are. The new value is made beside the
// owner and takes its place as a whole, so that an interrupt leaves the owner as it was.
#include "builtins/reverse.h"
#include "builtins/search.h"
#include "builtins/sort.h"
#include "engine/pins.h"
#include "members/methods.h"

namespace vesko {

namespace {

Matrix *putInPlace(MethodCall &call, Matrix *m) {
    if (m == call.owner) return m;
    pinMat(m);
    call.change();
    return call.replace(m);
}

// The rows and columns of a range of several rows and columns stay as they are.
bool isBlock(const Matrix *m) { return m->l2type == L2::RNG && m->nrows > 1 && m->ncols > 1; }

Matrix *sortOwner(MethodCall &call, const char *name, Wise wise) {
    if (wise != Wise::Whole && isBlock(call.owner)) return call.owner;
    return putInPlace(call, sortNaturally(name, call.owner, wise, call.node));
}

Matrix *reverseOwner(MethodCall &call, const char *name, Reversal what) {
    if (what != Reversal::Elements && isBlock(call.owner)) return call.owner;
    return putInPlace(call, reversed(name, call.owner, what, call.node));
}

}  // namespace

Matrix *method_sort(MethodCall &call) { return sortOwner(call, "sort", Wise::Whole); }
Matrix *method_rowsort(MethodCall &call) { return sortOwner(call, "rowsort", Wise::Row); }
Matrix *method_columnsort(MethodCall &call) { return sortOwner(call, "columnsort", Wise::Column); }
Matrix *method_reverse(MethodCall &call) { return reverseOwner(call, "reverse", Reversal::Elements); }
Matrix *method_rowreverse(MethodCall &call) { return reverseOwner(call, "rowreverse", Reversal::Rows); }
Matrix *method_columnreverse(MethodCall &call) {
    return reverseOwner(call, "columnreverse", Reversal::Columns);
}

// A domain that is sought may take the owner away.
Matrix *method_substitute(MethodCall &call) {
    pinMat(call.owner);
    return putInPlace(call, substituteElements(call.owner, call.arg(0), call.arg(1), call.node));
}

}  // namespace vesko

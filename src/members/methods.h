// Methods of values: x.sort(), l.append(v), m.swaprows(1, 2). The rows are in methods.def; a worker is called
// for the owners and the number of arguments that its row names.
#pragma once

#include "engine/assign.h"
#include "engine/node.h"
#include "members/kinds.h"
#include "values/matrix.h"

namespace vesko {

// One call of a method. The owner and the arguments are as they stand, perhaps shared, and stay alive over
// the call. A worker that changes its owner judges the arguments first, against the owner as it is; then
// change() gives the private copy, on which no error may be raised that leaves it half done. A domain that
// refuses the change gives the old value back when the worker has returned.
class MethodCall {
public:
    PcNode *const node;  // of the call: for errors
    Matrix *owner;       // the private copy once change() was called
    Matrix *args;        // LS of the arguments; empty if the row takes them unevaluated (node->child(1))
    uint32_t nargs;

    // `changes`: the worker may change its owner, which is looked up as a target then.
    MethodCall(PcNode *node, Matrix *owner, bool changes, bool evaluated);
    Matrix *arg(uint32_t k) const { return args->entries()[k]; }
    // Argument k as a number; what is none is refused under the name of the method.
    int32_t integerArg(uint32_t k, int32_t least, int32_t most, const char *name) const;
    double realArg(uint32_t k, const char *name) const;

    // The owner without other holders, as a plain matrix of its kind where it had structure. A temporary
    // owner is changed itself; one that is no place to store into is copied.
    Matrix *change();
    // Behind change(): the slot that holds the owner, and another value in it.
    Matrix *&place();
    Matrix *replace(Matrix *m);
    Matrix *close(Matrix *result);  // asks the domains, releases all; the result is borrowed

private:
    Target target;
    void leaveAns();

    bool on_target, changed = false;
    bool judged = false;  // a domain on the way to the owner will be asked
    uint32_t first_pin;
    uint32_t owner_pin;  // of an owner that is on no target
};

// Returns what the call answers, borrowed: as a rule the owner.
using MethodFn = Matrix *(*)(MethodCall &call);

// The member call `node` of an owner that is no object and no function; the owner is as evaluated, borrowed.
Matrix *callMethod(Matrix *owner, PcNode *node);

#define METHOD(field, owners, least, most, worker, ...) Matrix *worker(MethodCall &call);
#include "members/methods.def"
#undef METHOD

}  // namespace vesko

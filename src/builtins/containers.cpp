// Built-ins that make containers and pointers. None is folded: every call makes a value of its own.
#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "values/payload.h"

namespace vesko {

Matrix *newstack_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 0, node, "stack");
    return newPayloadMat(L2::STACK, newXstack);
}

Matrix *newqueue_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 0, node, "queue");
    return newPayloadMat(L2::QUEUE, newQueue);
}

// Several arguments are one value: their list.
Matrix *newpointer_bf(Matrix *args, Matrix **, PcNode *) { return newReferenceMat(L2::PTR, args); }

// ---- Sets of the pointers to the members of a domain. One of length 2 has the empty value as a member, too.

static Matrix *newPointerSet(Matrix *domain, uint32_t length) {
    Matrix *m = newReferenceMat(L2::PTRSET, domain->l2type == L2::NUL ? theCompleteMat() : domain);
    m->length = length;
    return m;
}

Matrix *newptrset_bf(Matrix *args, Matrix **, PcNode *) { return newPointerSet(args, 1); }
Matrix *newptrnset_bf(Matrix *args, Matrix **, PcNode *) { return newPointerSet(args, 2); }

}  // namespace vesko

// Methods of sets, stacks and queues.
#include "members/methods.h"
#include "values/containers.h"

namespace vesko {

Matrix *method_add(MethodCall &call) {
    addSetMember(call.change()->table(), call.arg(0));
    return call.owner;
}

Matrix *method_remove(MethodCall &call) {
    removeHashKey(call.change()->table(), call.arg(0));
    return call.owner;
}

static xstack *stackOf(const Matrix *m) { return static_cast<xstack *>(m->vdata); }
static xqueue *queueOf(const Matrix *m) { return static_cast<xqueue *>(m->vdata); }

Matrix *method_push(MethodCall &call) {
    pushStack(stackOf(call.change()), call.arg(0));
    return call.owner;
}

Matrix *method_pop_stack(MethodCall &call) { return popStack(stackOf(call.change())); }

Matrix *method_enqueue(MethodCall &call) {
    queInput(queueOf(call.change()), call.arg(0));
    return call.owner;
}

Matrix *method_dequeue(MethodCall &call) { return queOutput(queueOf(call.change())); }

}  // namespace vesko

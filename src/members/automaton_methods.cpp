// Methods of automatons: run, and the ports as they are seen from outside.
#include "engine/automatons.h"
#include "members/methods.h"

namespace vesko {

static uint32_t portArgument(const MethodCall &call, uint32_t nth) {
    return call.nargs > nth ? portNumber(call.arg(nth), call.node->child(1)->child(nth)) : 1;
}

Matrix *mat_field_run_proc(MethodCall &call) {
    runAutoMaton(call.owner);
    return theEmptyMat();
}

Matrix *mat_field_input_proc(MethodCall &call) {
    const uint32_t k = portArgument(call, 1);
    queInput(portAt(procOf(call.owner), k)->in, call.arg(0));
    return theEmptyMat();
}

// A port that is not there has sent nothing.
Matrix *mat_field_output_proc(MethodCall &call) {
    const uint32_t k = portArgument(call, 0);
    const Xproc *proc = procOf(call.owner);
    return k <= proc->ports->size ? queOutput(portAt(proc, k)->out) : theEmptyMat();
}

}  // namespace vesko

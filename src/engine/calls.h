// Calls of user functions: from call sites through the entries that a function's code record names, and from
// the runtime.
//
// A call returns the function's value: a temporary, or a value still held elsewhere; the empty value when the
// function has no outputs. Arguments are borrowed. The parent, which may be null, is the object, class or
// function that the call is a member of. The node is the one that errors are reported against.
#pragma once

#include "engine/frame.h"
#include "engine/node.h"

namespace vesko {

// One value. The function must have one input.
Matrix *callUfByMat(FuncRec *f, Matrix *m, PcNode *node);
// A list: as one value for a function of one input, else spread over the inputs, the others taking their
// defaults.
Matrix *callUfByList(FuncRec *f, Matrix *list, PcNode *node);
// One value, or none if m is null.
Matrix *callMbUfByMat(FuncRec *f, Matrix *m, Matrix *parent, PcNode *node);

// Members: what is no function is multiplied with the (first) value.
Matrix *callMemberFunc(Matrix *f, Matrix *m, Matrix *parent, PcNode *node);
Matrix *callMemberFunc2(Matrix *f, Matrix *a, Matrix *b, Matrix *parent, PcNode *node);

sfield *findParm(const FuncRec *f, uint32_t field);  // the parameter of that name; null if there is none

// Named arguments: children of `list` are nodes with the symbol as value and the argument as first child.
Matrix *callUfByNp(FuncRec *f, PcNode *list, Matrix *parent, PcNode *node);
Matrix *callBfbyNp(Matrix *f, PcNode *list, PcNode *node);

// A comparator's answer: negative, 0 or positive. The caller holds the function and the values.
int32_t compare_mats_by_uf(FuncRec *f, Matrix *a, Matrix *b, PcNode *node);

}  // namespace vesko

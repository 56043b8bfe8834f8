// Indexed read and write: checked indices, the elements that an index form touches, taking and storing them.
#pragma once

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

// ---- Checked indices. Indices count from 1 in the language; `max` is the largest one seen. The result is
// the value itself or a new temporary: IM, IS, RNG, RS, one-element BY, or the empty value, which touches
// nothing. Errors are reported against the node of the index.
Matrix *chkIndxMat(Matrix *value, uint32_t bound, uint32_t &max, PcNode *node);  // each in 1..bound
Matrix *asgnIndxMat(Matrix *value, uint32_t bound, uint32_t &max,
                    PcNode *node);  // no upper limit: a store grows

// The same with the evaluation of the node; the evaluated value is released if another one stands for it.
Matrix *chkEvalIndxMat(PcNode *node, uint32_t bound, uint32_t &max);
Matrix *chkEvalDiagIndxMat(PcNode *node, uint32_t n, uint32_t &max);

// One integer index, from 1, or the error.
uint32_t singleIndex(Matrix *value, PcNode *node);
uint32_t chkSingleIndex(Matrix *value, uint32_t bound, PcNode *node);
uint32_t getIndexS(const Matrix *m);  // from 0, of a checked IS, RS or BY

// The single index, from 0, that a real or integer scalar gives within the bound; false for all else, which
// is for the general check to judge.
inline bool quickIndex(const Matrix *index, uint32_t bound, uint32_t &i) {
    double x;
    if (index->l1type == L1::RS)
        x = index->rdata[0];
    else if (index->l1type == L1::IS)
        x = index->ints()[0];
    else
        return false;
    if (!(x >= 1 && x <= bound)) return false;
    i = static_cast<uint32_t>(x) - 1;
    return true;
}

// The k-th index of a checked index value, from 0, by its l2type.
constexpr unsigned n_index_kinds = 6;
using IndexFn = uint32_t (*)(const Matrix *index, uint32_t k);
extern const IndexFn get_index_fun[n_index_kinds];

// ---- Uniform view of real-like matrices: entries as doubles, by l2type.
constexpr unsigned n_entry_kinds = 13;
using EntryFn = double (*)(const Matrix *m, uint32_t i);
using Entry2Fn = double (*)(const Matrix *m, uint32_t row, uint32_t col);
extern const EntryFn mat_entry_fun[n_entry_kinds];
extern const Entry2Fn mat_entry2_fun[n_entry_kinds];

// ---- Reading with ready values. Nothing is released; the result may be a part of m.
Matrix *matRef(Matrix *m, Matrix *index, PcNode *node);
Matrix *matRef2(Matrix *m, Matrix *rows, Matrix *cols, PcNode *node);

// The k-th part of a value, from 0: an entry of a list, an element of a dense kind, a character.
Matrix *getMatVecComponent(Matrix *m, uint32_t k);

// ---- Functions as operands: f[values...]. `values` is a list.
Matrix *spawnFunction(Matrix *f, Matrix *values, PcNode *node);
// The indices of a node whose operand m is a function or an object; other kinds have no such index.
Matrix *answerIndices(Matrix *m, PcNode *node);
// An object answers by its member _sqbracket or _sqbracket2.
Matrix *objectRef(Matrix *object, Matrix *values, PcNode *node);

}  // namespace vesko

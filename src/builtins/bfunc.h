// The record of a built-in function, and the tables of built-ins and named constants.
#pragma once

#include <cstdint>

#include "values/containers.h"
#include "values/matrix.h"

namespace vesko {

// Works on the argument value (one argument as itself, several as a list) with the parameter values. Returns
// a temporary, or one of its arguments; releases nothing.
using BfWorker = Matrix *(*)(Matrix *args, Matrix **parms, PcNode *node);

enum class BfOperation : int { Create = 0, Spawn = 1, Reset = 3 };
// Create: a new record with defaults. Spawn: a copy with the values of parmVector, or null if one is refused.
// Reset: sets the parameter in place and returns bf, or null if the value is refused.
using BfMaintainer = Bfunc *(*)(BfOperation op, Bfunc *bf, Vector *parmVector, Matrix *value, uint32_t field);

struct BfInput {
    uint32_t symbol;
    Matrix *dflt;
    BfInput *next;
};

struct Bfunc {
    uint32_t name;  // symbol
    bool noFold;    // never folded at parse time
    BfWorker func;
    uint32_t nargs;
    BfInput *inputs;          // shared by all copies
    BfMaintainer maintainer;  // null: cannot be spawned or reset
    uint32_t nparms;          // parameters that a spawn must supply
    Vector *parmNames;        // field indices, shared; null without parameters
    Vector *parmValues;
};

Matrix *callBf(Bfunc *bf, Matrix *args, PcNode *node);
void freeBfunc(Bfunc *bf);
Bfunc *cloneBfunc(const Bfunc *bf);

void setBfunc();  // registers everything, at start
uint32_t addBf(uint32_t symbol, Matrix *value);
uint32_t findBuiltin(uint32_t symbol);  // index in the table of built-ins and constants, or not_found
uint32_t findBf(uint32_t symbol);       // global that holds the built-in of that very name, or not_found
Matrix *getBf(uint32_t k);
const char *get_num_bf_name(uint32_t k);
PcNode *getBFCallNode(uint32_t k, PcNode *args, uint32_t line);

// Domains that the language itself relies on.
extern Matrix *Class_D;  // the real scalars

}  // namespace vesko

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

// A parameter of a built-in: its default value, and which values a spawn and an assignment may give it.
struct BfParm {
    const char *name;
    Matrix *(*dflt)();
    bool (*accepts)(const Matrix *value);
    bool (*accepts_reset)(const Matrix *value) = nullptr;  // null: as a spawn
};
struct BfParmList {
    const BfParm *first = nullptr;
    uint32_t count = 0;

    constexpr BfParmList() = default;
    constexpr BfParmList(const BfParm *parms, uint32_t n) : first(parms), count(n) {}
    template <uint32_t N>
    constexpr BfParmList(const BfParm (&parms)[N]) : first(parms), count(N) {}
};

// What the list of built-ins tells of one: builtins.def.
struct BfRow {
    const char *name;
    BfWorker worker;
    const char *inputs;  // names with a blank between them
    bool noFold = false;
    BfParmList parms = {};
    uint32_t leastSpawn = 0;            // values that a spawn must give at least; 0: all
    BfMaintainer maintainer = nullptr;  // null: parameters are kept by parms alone
    bool later = false;                 // the worker says that it is not built yet
    // Of a domain: whether it has the real scalar x, as the worker would answer.
    bool (*hasReal)(double x, Matrix *const *parms) = nullptr;
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
    Vector *parmValues;       // linked; null without parameters
    const BfRow *row;         // null for functions that are made at run time

    Matrix **parms() const { return parmValues ? reinterpret_cast<Matrix **>(parmValues->data) : nullptr; }
};

// ---- Records
Bfunc *make_Ni0p_bf(const char *name, const char *inputs, BfWorker worker, BfMaintainer maintainer);
Bfunc *make_bf(const BfRow &row);                      // with the parameters of the row at their defaults
void COPY_BF_COMMON(Bfunc *dest, const Bfunc *src);    // all but the parameter values
Bfunc *copy_bf(const Bfunc *src, Vector *parmValues);  // takes the vector over
// A value of its own with room for parameter values, to which the caller appends them.
Matrix *newBfCopy(const Bfunc *src, uint32_t nvalues);
Bfunc *cloneBfunc(const Bfunc *bf);
void freeBfunc(Bfunc *bf);
// The maintainer of built-ins whose parameters are told by their row. Values that a spawn leaves out are
// those of the record that is spawned.
Bfunc *parms_bf_maintainer(BfOperation op, Bfunc *bf, Vector *parmVector, Matrix *value, uint32_t field);

// ---- Calls and parameters. Results are borrowed.
Matrix *callBf(Bfunc *bf, Matrix *args, PcNode *node);
Matrix *spawnBf(Matrix *bf, const Matrix *values,
                PcNode *node);                         // f[...]: a list of values; refused: an error
uint32_t findBfParm(const Bfunc *bf, uint32_t field);  // place of its value, or not_found
Matrix *getBfParm(const Bfunc *bf, uint32_t field);    // null if there is none of that name
void resetBfParm(Bfunc *bf, uint32_t field, Matrix *value, PcNode *node);  // f.parm = value

// ---- The tables
void setBfunc();  // registers everything, at start
uint32_t addBf(uint32_t symbol, Matrix *value);
uint32_t findBuiltin(uint32_t symbol);  // index in the table of built-ins and constants, or not_found
uint32_t findBf(uint32_t symbol);       // global that holds the built-in of that very name, or not_found
Matrix *getBf(uint32_t k);
const char *get_num_bf_name(uint32_t k);  // name of a constant, "?" for all else
PcNode *getBFCallNode(uint32_t k, PcNode *args, uint32_t line);

// ---- Domains that the language itself relies on.
extern Matrix *Class_R, *Class_Z, *Class_C, *Class_D, *Class_I, *Class_B, *Class_L, *Class_M;

}  // namespace vesko

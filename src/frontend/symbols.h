// Names: symbols, field names, compile-time variables and scopes, globals.
#pragma once

#include <cstdint>

#include "engine/node.h"
#include "frontend/arena.h"
#include "values/containers.h"

namespace vesko {

struct Variable;

constexpr uint32_t not_found = 0x7FFFFFFF;

// ---- Symbols and field names: two numberings of names, compared as integers.
uint32_t findSymbolIndex(const char *text);  // interns
const char *getSymbolName(uint32_t symbol);
uint32_t findFieldIndex(uint32_t symbol);  // adds
uint32_t findFieldIndexByStr(const char *text);
uint32_t rtFindFieldIndexByStr(const char *text);  // never adds a field
const char *getFieldName(uint32_t field);
uint32_t getFieldSymbol(uint32_t field);

// ---- Fixed field indices: FIELD_INDEX_<NAME>, constants in the order of the list.
enum FieldIndex : uint32_t {
#define FIELD(name, text) FIELD_INDEX_##name,
#include "frontend/fields.def"
#undef FIELD
    n_fixed_fields
};
constexpr uint32_t N_AUTO_FIELDS = FIELD_INDEX_FGETPOS;  // those that values answer themselves

extern uint32_t SYMBOL_INDEX_APPLY, SYMBOL_INDEX_APPROVE, SYMBOL_INDEX_VALIDATE, SYMBOL_INDEX_WITHDRAW,
    SYMBOL_INDEX_AUTO_REAPPLY, SYMBOL_INDEX_GET, SYMBOL_INDEX_PUT, SYMBOL_INDEX_STATES, SYMBOL_INDEX_NPORTS;

// ---- Compile-time variables.
// What is known of a variable's default value and domain at compile time.
enum class DomainMode : uint8_t {
    KnownKnown,  // 0: default and domain known
    RunRun,      // 1: both at run time
    KnownRun,    // 2: default known
    RunKnown,    // 3: domain known
    KnownFree,   // 4: default known, no domain
    RunFree,     // 5: no domain
};
struct CtVar {
    uint32_t symbol;
    DomainMode attr;
    Matrix *domain;  // linked
    Matrix *value;   // linked: the default
    uint32_t flags;
    CtVar *next;

    bool isFree() const { return attr == DomainMode::KnownFree || attr == DomainMode::RunFree; }
    bool hasKnownDomain() const { return attr == DomainMode::KnownKnown || attr == DomainMode::RunKnown; }
};

// What is being compiled: the top level, a function or an automaton.
struct CtScope {
    Vector *vars;     // CtVar
    Vector *protect;  // indices of running loop counters
    Vector *parms;    // sfields of the function being compiled; may be null
    char kind;        // 'F' function and top level, 'P' automaton
    PcNode *pclib, *smpclib;
    PcNode *returnnode;  // target of return; may be null
    Pod *mempod;         // children arrays
    Carver carver;
    bool usesparent;  // the text assigns to a field of parent
    uint32_t loopdepth, blockdepth;
    uint32_t nin, nout;
    CtScope *parent;
    CtScope *child;  // kept for reuse
};

extern CtScope *ctscope;       // the current one
extern uint32_t progstkdepth;  // scopes open above the top one
extern Pod *freemempod;        // free pods of all scopes

// Memory that lives as long as the nodes of the present scope.
inline void *newScopeMem(size_t size) { return carve(size, ctscope->carver, freemempod, ctscope->mempod); }

// A scope for a function or automaton inside the present one; it takes the parameters over. What the code
// that was compiled keeps is taken out of the scope before it is left. A parse error closes scopes through
// throwVars.
CtScope *openScope(char kind, Vector *parms, uint32_t nvars);
void leaveScope();

void setTopVarList();
void throwVars();  // drops everything compile-time that the last command left

uint32_t findVarIndex(uint32_t symbol);  // or not_found
CtVar *getCtVar(uint32_t k);
uint32_t cFindVarIndex(uint32_t symbol);  // creates
uint32_t cFindVarIndexWithDomain(uint32_t symbol, PcNode *in_node);
uint32_t registerVar(uint32_t symbol, PcNode *formal);  // formal may be null; not_found if the name exists
uint32_t getLoopCounterIndex(uint32_t symbol, uint32_t line);
uint32_t newVarIndex();
void protectvar(uint32_t k);
void unprotectvar(uint32_t k);
bool isprotected(uint32_t k);
CtVar *newCtVar(uint32_t symbol, Matrix *value, Matrix *domain);
void updateCtVar(CtVar *var, Matrix *value, Matrix *domain);
void freeCtVar(void *var);
void auditCtVars(const Vector *vars);  // for the audit of links
void setCtVarVector(Vector *vars, PcNode *outputs, PcNode *inputs);
bool non_trivial_io_args(PcNode *outputs, PcNode *inputs);

// ---- Globals.
extern Vector *glbvarvec;
uint32_t getHashCode(const char *text);          // bucket of a name
uint32_t addGv(uint32_t symbol, Matrix *value);  // the newest entry of a name wins
uint32_t addGvWithDomain(uint32_t symbol, Matrix *value, Matrix *domain);
uint32_t findGv(uint32_t symbol);
uint32_t findGvByStr(const char *text);
uint32_t cFindGv(uint32_t symbol);
Matrix *getGv(uint32_t k);
Variable *getGlobalVariable(uint32_t k);
void updGv(uint32_t k, Matrix *value);
Matrix *getGVForUpd(uint32_t k);

}  // namespace vesko

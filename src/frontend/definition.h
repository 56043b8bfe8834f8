// Inside the definition parser: heads of functions, their parameters and formal arguments.
#pragma once

#include "engine/node.h"
#include "frontend/token.h"
#include "values/containers.h"

namespace vesko {

// The token lists of a head: `[parms] (inputs) -> (outputs)`.
struct FuncHead {
    Token *parms, *inputs, *outputs;
};
FuncHead getMapIOargs(Token *head, uint32_t line);
FuncHead getOneLineMapIOargs(Token *head);

// ---- Parameters: a node with an item a parameter, whose value is field index times 5 plus attribute.
enum class ParmAttr : uint8_t { Public, Readonly, Common, Auto, Private };
constexpr int32_t n_parm_attrs = 5;
inline ParmAttr parmAttr(const PcNode *item) { return static_cast<ParmAttr>(item->value % n_parm_attrs); }
inline uint32_t parmField(const PcNode *item) { return static_cast<uint32_t>(item->value / n_parm_attrs); }

PcNode *parseParameters(Token *list, uint32_t line);
Vector *makeParmVector(const PcNode *parameters,
                       int32_t &npublic);  // public ones first; null if there are none

// ---- Formal arguments: a list node with an item an argument, of default and domain.
struct FormalFlags {
    bool domain;  // some argument has a domain
    bool dflt;    // some argument has a default
};
PcNode *procFormalArgList(Token *list, uint32_t line, FormalFlags &flags);
// Makes the slots of the function in the order that calls rely on: result, inputs, outputs if there are
// several.
void procIOArgs(const PcNode *outputs, const PcNode *inputs);

}  // namespace vesko

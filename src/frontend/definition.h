// Inside the definition parser: heads of functions, their parameters and formal arguments, constructors, and
// the items of class bodies.
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
using ParmAttr = Access;
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

// ---- Constructors: functions whose result is the object that their last statement makes.
PcNode *readconstructor(InstNode *inst, uint32_t line);
PcNode *makeOneLineConstructor(Token *left, uint32_t line);
PcNode *makeDfltConstructor(uint32_t line);

// ---- Items of class bodies. A field item is a list node with the field as value and three children: a node
// with the attribute as value, the default value, the domain.
Access takeFieldWord(Token *&tokens, bool only_common);  // the attribute in front of a name
PcNode *newFieldItem(const Token *name, Access attr, PcNode *value, PcNode *domain);  // null: not given
Token *fieldValueTokens(Token *name);                                                 // what follows `name =`
struct ItemValue {
    PcNode *value;
    PcNode *domain;  // null without one
};
ItemValue parseItemValue(Token *tokens);                 // `v` or `v in D`
PcNode *parseSetting(Token *name, const char *refusal);  // `base = v` and its like
void setOnce(PcNode *&part, PcNode *item, const char *refusal);
void addFieldItem(PcNode *fields, PcNode *item);  // refuses a second field of the name
int32_t indexSize(const PcNode *fields, uint32_t n_items);

}  // namespace vesko

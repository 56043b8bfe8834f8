// The built-ins `regexp` and `regsub`: functions that hold a pattern and its compiled form. The option g
// makes them work on all matches, and shows in their name.
#include "builtins/regexp.h"

#include <iterator>

#include "builtins/regexp_match.h"
#include "builtins/workers.h"
#include "console/command.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "frontend/symbols.h"
#include "operators/index.h"

namespace vesko {

namespace {

// The parameter values of both: texts, the pattern first, and behind them the compiled pattern.
struct PatternFamily {
    const char *name, *global_name;
    BfWorker worker, global_worker;
    BfMaintainer maintainer;
    const char *parms[3];
    const char *defaults[3];
    const char *compiled_default;
    uint32_t options;          // place of the options
    uint32_t ntexts;           // place of the compiled pattern
    bool takes_unknown_parms;  // a store into any other parameter does nothing, and is no error
};

constexpr uint32_t pattern_place = 0;

const PatternFamily matching = {
    .name = "regexp",
    .global_name = "reggexp",
    .worker = regexp_bf,
    .global_worker = reggexp_bf,
    .maintainer = regexp_bf_maintainer,
    .parms = {"pattern", "options", "match"},
    .defaults = {"Vesko", ""},
    .compiled_default = "Vesko",
    .options = 1,
    .ntexts = 2,
    .takes_unknown_parms = false,
};

const PatternFamily substituting = {
    .name = "regsub",
    .global_name = "reggsub",
    .worker = regsub_bf,
    .global_worker = reggsub_bf,
    .maintainer = regsub_bf_maintainer,
    .parms = {"pattern", "substitute", "options"},
    .defaults = {"Capitalism", "Communism", "ig"},
    .compiled_default = "Capitalisim",  // another one than the default pattern, and kept so
    .options = 2,
    .ntexts = 3,
    .takes_unknown_parms = true,
};

// ---- Records

Matrix *compileWith(const Matrix *pattern, const Matrix *options) {
    return regexp_comp(pattern, getReOptions(textOf(options)));
}

Matrix *defaultText(const char *text) { return *text ? newStrMatCopy(text) : theEmptyStrMat(); }

Bfunc *create(const PatternFamily &family) {
    findSymbolIndex(family.global_name);  // a symbol from here on, so that followOptions needs no memory
    Bfunc *bf = make_Ni0p_bf(family.name, "target", family.worker, family.maintainer);
    bf->nparms = family.ntexts;
    bf->parmNames = newVector(std::size(family.parms));
    for (const char *parm : family.parms) addElement(bf->parmNames, asEntry(findFieldIndexByStr(parm)));
    bf->parmValues = newVector(family.ntexts + 1);
    for (uint32_t k = 0; k < family.ntexts; k++)
        appendMatVecEntry(bf->parmValues, defaultText(family.defaults[k]));
    Matrix *pattern = newStrMatCopy(family.compiled_default);
    appendMatVecEntry(bf->parmValues, compileWith(pattern, bf->parmValues->matAt(family.options)));
    releaseMat(pattern);
    return bf;
}

void followOptions(const PatternFamily &family, Bfunc *bf) {
    const std::string_view options = textOf(bf->parmValues->matAt(family.options));
    const bool global = options.find('g') != options.npos;
    bf->name = findSymbolIndex(global ? family.global_name : family.name);
    bf->func = global ? family.global_worker : family.worker;
}

Bfunc *spawn(const PatternFamily &family, const Bfunc *bf, Vector *texts) {
    for (uint32_t k = 0; k < texts->size; k++)
        if (texts->matAt(k)->l2type != L2::TX) return nullptr;
    appendMatVecEntry(texts, compileWith(texts->matAt(pattern_place), texts->matAt(family.options)));
    Bfunc *spawned = copy_bf(bf, texts);
    followOptions(family, spawned);
    return spawned;
}

Bfunc *reset(const PatternFamily &family, Bfunc *bf, Matrix *value, uint32_t field) {
    if (value->l2type != L2::TX) return nullptr;
    const uint32_t place = findBfParm(bf, field);
    if (place >= family.ntexts) return family.takes_unknown_parms ? bf : nullptr;
    Matrix **values = bf->parms(), *compiled = values[family.ntexts];
    if (place == pattern_place) compiled = compileWith(value, values[family.options]);
    if (place == family.options) compiled = compileWith(values[pattern_place], value);
    holdInterrupt();
    updateMatVecEntry(bf->parmValues, place, value);
    updateMatVecEntry(bf->parmValues, family.ntexts, compiled);
    if (place == family.options) followOptions(family, bf);
    freeInterrupt();
    return bf;
}

Bfunc *maintain(const PatternFamily &family, BfOperation op, Bfunc *bf, Vector *texts, Matrix *value,
                uint32_t field) {
    switch (op) {
        case BfOperation::Create: return create(family);
        case BfOperation::Spawn: return spawn(family, bf, texts);
        default: return reset(family, bf, value, field);
    }
}

// ---- Work

const Matrix *compiledOf(Matrix **parms, const PatternFamily &family, PcNode *node) {
    const Matrix *compiled = parms[family.ntexts];
    if (!isCompiled(compiled)) error_regexp_compile(node);
    return compiled;
}

template <auto match>
Matrix *matchText(Matrix *target, Matrix **parms, PcNode *node) {
    if (target->l2type != L2::TX) return theEmptyMat();
    return match(compiledOf(parms, matching, node), textOf(target));
}

template <auto sub>
Matrix *substituteText(Matrix *target, Matrix **parms, PcNode *node) {
    constexpr uint32_t replacement_place = 1;
    if (target->l2type != L2::TX) return theEmptyMat();
    Matrix *result =
        sub(compiledOf(parms, substituting, node), textOf(target), textOf(parms[replacement_place]));
    return result ? result : target;
}

}  // namespace

Bfunc *regexp_bf_maintainer(BfOperation op, Bfunc *bf, Vector *texts, Matrix *value, uint32_t field) {
    return maintain(matching, op, bf, texts, value, field);
}

Bfunc *regsub_bf_maintainer(BfOperation op, Bfunc *bf, Vector *texts, Matrix *value, uint32_t field) {
    return maintain(substituting, op, bf, texts, value, field);
}

Matrix *regexp_bf(Matrix *target, Matrix **parms, PcNode *node) {
    return matchText<regexp_match_one>(target, parms, node);
}
Matrix *reggexp_bf(Matrix *target, Matrix **parms, PcNode *node) {
    return matchText<regexp_match_all>(target, parms, node);
}
Matrix *regsub_bf(Matrix *target, Matrix **parms, PcNode *node) {
    return substituteText<regexp_sub_one>(target, parms, node);
}
Matrix *reggsub_bf(Matrix *target, Matrix **parms, PcNode *node) {
    return substituteText<regexp_sub_all>(target, parms, node);
}

Matrix *newPatternFunction(Matrix *texts) {
    const PatternFamily &family = texts->length == matching.ntexts ? matching : substituting;
    Matrix *bf = getBf(findBuiltin(findSymbolIndex(family.name)));
    Matrix *function = spawnFunction(bf, texts, nullptr);
    if (isCompiled(function->builtin()->parms()[family.ntexts])) return function;
    releaseMat(function);
    return nullptr;
}

// Literals are compiled when they are parsed; no source leads to a node of these kinds.
Matrix *doRegExpCompile(PcNode *) { xAbort("Reg compile: error to be corrected ..."); }

const Matrix *patternOf(const Matrix *value) {
    if (value->l2type == L2::REGEXP) return value;
    if (value->l2type != L2::BF || value->builtin()->maintainer != regexp_bf_maintainer) return nullptr;
    return value->builtin()->parmValues->matAt(matching.ntexts);
}

}  // namespace vesko

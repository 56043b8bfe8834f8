// Class definitions: the items of the body become the parts of a node that builds the class when it runs.
#include "engine/frame.h"
#include "frontend/builders.h"
#include "frontend/definition.h"
#include "frontend/inst.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"

namespace vesko {

// ---- The constructor -----------------------------------------------------------------------------

static PcNode *parseConstructorItem(Token *name) {
    const uint32_t line = name->line;
    Token *sign = name->next;
    if (!sign || !sign->is(TokenKind::Assign) || !sign->next)
        syntaxError(line, "constructor must be defined with 'new =' followed by function definition");
    Token *value = sign->next, *left, *right;
    if (isSingle(value) && value->is(TokenKind::FunctionBlock)) return readconstructor(value->inst, line);
    if (isSingle(value) || splitTokenList(value, left, right) != Opr::OneLineFunc || !left)
        syntaxError(line, "constructor should be defined as a function");
    return makeOneLineConstructor(left, line);
}

// ---- Fields --------------------------------------------------------------------------------------

static bool isMemberFunction(Access attr) { return attr == Access::Common || attr == Access::Auto; }

// The function that a field is given may work on the private fields of its class.
static void admitMember(const PcNode *closure, const Token *name, Access attr, bool is_block) {
    const bool is_member = isMemberFunction(attr);
    if (!is_member && !(is_block && attr == Access::Private)) return;
    if (is_member && is_block && closure->child(0)->ncub)
        syntaxError(name->line, "common and auto functions cannot have parameters");
    const bool has_inputs = closure->child(2)->ncub != 0;
    if (attr == Access::Auto && is_block && has_inputs)
        syntaxError(name->line, "auto function must have no input arg");
    if (name->symbol == SYMBOL_INDEX_VALIDATE && has_inputs)
        syntaxError(name->line, "class field 'validate' cannot have input argument");
    closure->child(3)->constant->func()->is_member = 1;
}

static PcNode *parseField(Token *name, Access attr) {
    const uint32_t line = name->line;
    if (name->symbol == SYMBOL_INDEX_VALIDATE && attr != Access::Common)
        syntaxError(line, "class field 'validate' access type is not 'common'");
    if (isSingle(name)) {
        if (isMemberFunction(attr)) syntaxError(line, "class field '%s' has no value given", tok2str(name));
        return newFieldItem(name, attr, nullptr, nullptr);
    }
    Token *tokens = fieldValueTokens(name);
    const bool is_block = isSingle(tokens) && tokens->is(TokenKind::FunctionBlock);
    if (isMemberFunction(attr) && isSingle(tokens) && !is_block)
        syntaxError(line, "common and auto class attributes must be functions without domains");
    ItemValue v = parseItemValue(tokens);
    if (v.domain && attr != Access::Public) syntaxError(line, "only public attributes can have domain");
    if (v.value->kind == Opr::FuncClosure) admitMember(v.value, name, attr, is_block);
    return newFieldItem(name, attr, v.value, v.domain);
}

// ---- Items ---------------------------------------------------------------------------------------

// `special` becomes the field of `new`, `base` or `title`, or 0.
static PcNode *parseClassItem(Token *tokens, uint32_t line, uint32_t &special) {
    if (!tokens) syntaxError(line, "token expected");
    if (tokens->is(TokenKind::Identifier)) {
        special = findFieldIndex(tokens->symbol);
        switch (special) {
            case FIELD_INDEX_NEW: return parseConstructorItem(tokens);
            case FIELD_INDEX_SUPER:
                return parseSetting(tokens, "'base' should be assigned a value, or a list of values");
            case FIELD_INDEX_TITLE: return parseSetting(tokens, "title should be assigned a string");
            default: break;
        }
    } else if (!tokens->is(TokenKind::Keyword)) {
        syntaxError(tokens->line, "unexpected token '%s' in class definition", tok2str(tokens));
    }
    special = 0;
    Access attr = takeFieldWord(tokens, false);
    return parseField(tokens, attr);
}

namespace {
struct ClassParts {
    PcNode *bases, *constructor, *title;
    PcNode *fields;  // a list node with a child an item
};
}  // namespace

static void addClassItem(ClassParts &parts, const InstNode *inst) {
    uint32_t special;
    PcNode *item = parseClassItem(inst->token->next, inst->token->line, special);
    switch (special) {
        case FIELD_INDEX_SUPER: return setOnce(parts.bases, item, "class has two base lists");
        case FIELD_INDEX_NEW: return setOnce(parts.constructor, item, "class has two base lists");
        case FIELD_INDEX_TITLE: return setOnce(parts.title, item, "class has two titles");
        default: return addFieldItem(parts.fields, item);
    }
}

PcNode *readClass(InstNode *block) {
    const InstNode *items = block->cub[0];
    const uint32_t line = items ? instLine(items) : block->token->line;
    ClassParts parts{nullptr, nullptr, nullptr, newPcNode(Opr::List, no_value, 0, line)};
    uint32_t n_items = 0;
    for (const InstNode *inst = items; inst; inst = inst->next, n_items++) addClassItem(parts, inst);
    if (!parts.bases) parts.bases = newPcNode(Opr::List, no_value, 0, line);
    if (!parts.constructor) parts.constructor = makeDfltConstructor(line);
    if (!parts.title) parts.title = newMatPcNode(newStrMatCopy(""), line);
    PcNode *node = newPcNode(Opr::ClassDef, indexSize(parts.fields, n_items), 4, line);
    setPcCub(node, 0, parts.bases);
    setPcCub(node, 1, parts.fields);
    setPcCub(node, 2, parts.constructor);
    setPcCub(node, 3, parts.title);
    return node;
}

}  // namespace vesko

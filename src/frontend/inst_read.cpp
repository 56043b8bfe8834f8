// The first pass over a command: tokens to a tree of instructions that shows the shape of the blocks.
// Expressions stay token lists.
#include "console/command.h"
#include "frontend/inst.h"
#include "frontend/source.h"
#include "frontend/token.h"

namespace vesko {

static InstNode *readInst(Token *first);

// ---- Tokens

static Token *nextToken() { return getToken(LexStart::Statement); }

static Token *skipSeparators() {
    Token *token;
    do token = nextToken();
    while (token->isSeparator());
    return token;
}

static bool isWord(const Token *token) { return token->is(TokenKind::Keyword); }

// ---- Simple statements

static InstNode *closeStatement(Token *first, Token *stop) {
    stop->next = first;
    return newInstNode(InstId::Simple, stop, 0);
}

// Up to the stop token. Each token is read in the category of the one before, but those of a head all in the
// category of the first one: so in `if x == 'a'` the quote is a transpose; programs rely on it.
static InstNode *readLine(Token *first, bool is_head) {
    LexStart category = getTokCat(first->kind);
    for (Token *last = first;;) {
        Token *token = getToken(category);
        if (token->isStop()) return closeStatement(first, token);
        last = last->next = token;
        if (!is_head) category = getTokCat(token->kind);
    }
}

static InstNode *readSingleInst(Token *first) { return readLine(first, false); }
static InstNode *readInstLine(Token *first) { return readLine(first, true); }

// A head may not begin with a stop token or a keyword.
static void checkHead(const Token *first) {
    if (first->isStop() || isWord(first))
        syntaxError(first->line, "unexpected token '%s' reading block header", tok2str(first));
}

static InstNode *getBlockHeadNode() {
    Token *first = nextToken();
    checkHead(first);
    return readInstLine(first);
}

static bool endsInSemicolon(const InstNode *simple) { return simple->token->is(TokenKind::Semicolon); }

// ---- Lists of instructions

class InstList {
public:
    void append(InstNode *inst) {
        *end = inst;
        end = &inst->next;
    }
    InstNode *first = nullptr;

private:
    InstNode **end = &first;
};

// The next instruction of a block, which the end of the input cannot end.
static InstNode *getBodyInst() {
    Token *first = skipSeparators();
    if (first->is(TokenKind::Eof)) {
        resetFileList();
        tokenError("unexpected EOF");
    }
    return readInst(first);
}

// A finished until or unless block stops the list as well, so it cannot stand directly in such a body.
static bool isEmptyInst(const InstNode *inst) {
    if (!inst) return true;
    switch (inst->id) {
        case InstId::Elseif:
        case InstId::Else:
        case InstId::End:
        case InstId::Until:
        case InstId::Unless:
        case InstId::NoInst: return true;
        default: return false;
    }
}

static InstNode *readBlockBody(InstNode *&end, bool single_lines) {
    InstList body;
    for (;;) {
        InstNode *inst = getBodyInst();
        if (isEmptyInst(inst)) {
            end = inst;
            return body.first;
        }
        if (single_lines && inst->id != InstId::Simple)
            syntaxError(instLine(inst), "singlne line statement expected");
        body.append(inst);
    }
}

static InstId checkBlockType(InstId id, const InstNode *end) {
    switch (id) {
        case InstId::If:
        case InstId::Elseif:
            if (end->id == InstId::End || end->id == InstId::Else || end->id == InstId::Elseif)
                return end->id;
            syntaxError(instLine(end), "'end', 'else', or 'elseif' expected to match 'if'.");
        case InstId::Else:
            if (end->id == InstId::End) return end->id;
            syntaxErrorColon(instLine(end), "'end' expected to match 'else'");
        case InstId::For:
        case InstId::While:
        case InstId::Function:
        case InstId::Until:
        case InstId::Unless:
        case InstId::Class:
        case InstId::Automaton:
        case InstId::Conditional:
            if (end->id != InstId::End) syntaxError(instLine(end), "'end' expected");
            if (!end->token->isKeyword(KeywordId::End))
                syntaxError(instLine(end), "the thing before 'end' is not liked");
            return id;
        default: syntaxErrorColon(instLine(end), "block ended with wrong keyword");
    }
}

// ---- Blocks with a head

static InstNode *newBlock(InstId id, InstNode *head, InstNode *body) {
    InstNode *block = newInstNode(id, head->token, 2);
    setInstCub(block, 0, head);
    setInstCub(block, 1, body);
    return block;
}

// A head that ends in a semicolon is the tail of a do block.
static InstNode *makeTail(InstId id, InstNode *head) {
    if (id != InstId::While && id != InstId::Until) syntaxError(head->token->line, "token ';' unexpected");
    setInstID(head, id == InstId::While ? InstId::TailWhile : InstId::TailUntil);
    return head;
}

InstNode *getInstBlock(InstId id) {
    InstNode *head = getBlockHeadNode();
    if (endsInSemicolon(head)) return makeTail(id, head);
    InstNode *end;
    InstNode *body = readBlockBody(end, false);
    if (id != InstId::Function) body = transformInstructList(body);
    return newBlock(checkBlockType(id, end), head, body);
}

static InstNode *getElseBlock() {
    InstNode *end;
    InstNode *body = readBlockBody(end, false);
    if (end->id != InstId::End) syntaxError(instLine(end), "'end' statement expected to match 'else'.");
    return transformInstructList(body);
}

// The parts of a chain, the latest of which ended in `elseif`.
static InstNode *getElseifChain(InstNode *part) {
    InstNode *chain = newInstNode(InstId::IfChain, part->token, 0);
    for (;;) {
        InstId ended = part->id;
        setInstID(part, InstId::If);
        addInstCub(chain, part);
        if (ended == InstId::End) return chain;
        if (ended == InstId::Else) break;
        if (ended != InstId::Elseif) tokenError("'end', or 'else' expected to match 'elseif'");
        part = getInstBlock(InstId::Elseif);
    }
    setInstID(chain, InstId::IfChainElse);
    addInstCub(chain, getElseBlock());
    return chain;
}

static InstNode *getIfBlock() {
    InstNode *part = getInstBlock(InstId::If);
    if (part->id == InstId::Elseif) return getElseifChain(part);
    bool has_else = part->id == InstId::Else;
    setInstID(part, InstId::If);
    return has_else ? newBlock(InstId::IfElse, part, getElseBlock()) : part;
}

// ---- do

static InstNode *readDoBlockBody(InstNode *&tail) {
    InstList body;
    for (;;) {
        InstNode *inst = getBodyInst();
        if (inst->id == InstId::TailWhile || inst->id == InstId::TailUntil) {
            tail = inst;
            return body.first;
        }
        body.append(inst);
    }
}

static InstNode *getDoBlock() {
    InstNode *tail;
    InstNode *body = transformInstructList(readDoBlockBody(tail));
    InstNode *block =
        newInstNode(tail->id == InstId::TailWhile ? InstId::DoWhile : InstId::DoUntil, tail->token, 2);
    setInstCub(block, 0, body);
    setInstCub(block, 1, tail);
    setInstID(tail, InstId::Simple);
    return block;
}

// ---- try

static InstNode *readTryBlockBody() {
    InstList body;
    for (;;) {
        InstNode *inst = getBodyInst();
        if (inst->id == InstId::Catch) return body.first;
        body.append(inst);
    }
}

// Instructions up to one that ends the list. A list that begins with its end consists of it: it is refused
// when it is compiled.
template <class IsEnd>
static InstNode *readUntil(IsEnd is_end, InstNode *&end) {
    InstList body;
    for (;;) {
        InstNode *inst = getBodyInst();
        if (is_end(inst->id)) {
            end = inst;
            return body.first ? body.first : inst;
        }
        body.append(inst);
    }
}

static bool isSingleName(const InstNode *inst) {
    if (inst->id != InstId::Simple || !inst->token->is(TokenKind::Newline)) return false;
    const Token *name = inst->token->next;
    return name->is(TokenKind::Identifier) && !name->next;
}

static InstNode *readCatchBlock(InstNode *&head) {
    head = getBodyInst();
    if (!isSingleName(head)) syntaxError(instLine(head), "single identifier following 'catch' expected");
    InstNode *end;
    return readUntil([](InstId id) { return id == InstId::End; }, end);
}

static InstNode *getTryBlock(Token *word) {
    InstNode *block = newInstNode(InstId::Try, word, 3);
    InstNode *head;
    setInstCub(block, 1, readTryBlockBody());
    setInstCub(block, 2, readCatchBlock(head));
    setInstCub(block, 0, head);
    return block;
}

// ---- switch

static InstNode *readCaseBlock(Token *word, InstNode *&end) {
    InstNode *head = getBlockHeadNode();
    InstNode *body = readUntil(
        [](InstId id) {
            return id == InstId::End || id == InstId::Case || id == InstId::Cases || id == InstId::Default;
        },
        end);
    InstNode *part = newBlock(InstId::If, head, body);
    part->token = word;  // tells case from cases
    return part;
}

static InstNode *getSwitchBlock() {
    InstNode *head = getBodyInst();
    if (head->id != InstId::Simple) syntaxError(instLine(head), "single instruction expected");
    Token *word = nextToken();
    if (!word->isKeyword(KeywordId::Case) && !word->isKeyword(KeywordId::Cases))
        syntaxError(word->line, "keyword 'case' expected, but got %u", index(word->kind));
    InstNode *cases = newInstNode(InstId::IfChain, word, 0);
    InstNode *end;
    do {
        addInstCub(cases, readCaseBlock(word, end));
        word = end->token;
    } while (end->id == InstId::Case || end->id == InstId::Cases);
    bool has_default = end->id == InstId::Default;
    if (has_default) {
        setInstID(cases, InstId::IfChainElse);
        addInstCub(cases, getElseBlock());
    }
    return newBlock(has_default ? InstId::SwitchDefault : InstId::Switch, head, cases);
}

// ---- Definitions

static InstNode *readItems(InstId id) {
    InstNode *end;
    InstNode *items = readBlockBody(end, true);
    InstNode *block = newInstNode(checkBlockType(id, end), end->token, 1);
    setInstCub(block, 0, items);
    return block;
}

InstNode *getClassBlock() { return readItems(InstId::Class); }
InstNode *getClubBlock() { return readItems(InstId::Conditional); }

InstNode *getProcBlock(InstId id) {
    Token *first = nextToken();
    bool empty = first->is(TokenKind::Newline);
    if (!empty) checkHead(first);
    InstNode *head = empty ? newInstNode(InstId::EmptyHeader, first, 0) : readInstLine(first);
    InstNode *end;
    InstNode *body = readBlockBody(end, false);
    return newBlock(checkBlockType(id, end), head, transformInstructList(body));
}

// ---- Single words

static InstNode *readThrow() {
    Token *name = nextToken();
    if (!name->is(TokenKind::Identifier)) syntaxError(name->line, "identifier expected after 'throw'");
    return newInstNode(InstId::Throw, name, 0);
}

static InstNode *readJump(Token *word) {
    if (getLoopDepth() == 0) {
        if (word->isKeyword(KeywordId::Break)) syntaxError(word->line, "unexpected keyword 'break'");
        if (word->isKeyword(KeywordId::Continue))
            syntaxErrorColon(word->line, "unexpected keyword 'continue'");
    }
    return newInstNode(static_cast<InstId>(word->keyword), word, 0);
}

static InstNode *readYield(Token *word) {
    Token *first = nextToken();
    if (first->isStop() || isWord(first))
        syntaxError(word->line, "only newline is supposed to follow 'yield'");
    InstNode *inst = newInstNode(InstId::Yield, word, 1);
    setInstCub(inst, 0, readInstLine(first));
    return inst;
}

static InstNode *readStop(Token *word) {
    Token *token = nextToken();
    if (token->is(TokenKind::Semicolon) || token->is(TokenKind::Newline))
        return newInstNode(InstId::Stop, word, 0);
    if (token->isStop() || isWord(token))
        syntaxError(word->line, "only newline is supposed to follow 'stop'");
    syntaxError(word->line, "unexpected token after 'stop'");
}

// ---- Any instruction

static InstNode *readLoop(InstNode *(*read)(InstId), InstId id) {
    incLoopDepth();
    incBlockDepth();
    InstNode *inst = read(id);
    decLoopDepth();
    decBlockDepth();
    return inst;
}

static InstNode *readWordInst(Token *word) {
    InstId id = static_cast<InstId>(word->keyword);
    switch (word->keyword) {
        case KeywordId::For:
        case KeywordId::While:
        case KeywordId::Until: return readLoop(getInstBlock, id);
        case KeywordId::Do: return readLoop([](InstId) { return getDoBlock(); }, id);
        case KeywordId::Unless: return getInstBlock(id);
        case KeywordId::If: return getIfBlock();
        case KeywordId::Switch: return getSwitchBlock();
        case KeywordId::Try: return getTryBlock(word);
        case KeywordId::Throw: return readThrow();
        case KeywordId::Elseif:
        case KeywordId::Else:
        case KeywordId::End:
        case KeywordId::Cases:
        case KeywordId::Case:
        case KeywordId::Default:
        case KeywordId::Catch: return newInstNode(id, word, 0);
        case KeywordId::Break:
        case KeywordId::Continue:
        case KeywordId::Return: return readJump(word);
        case KeywordId::Yield: return readYield(word);
        case KeywordId::Stop: return readStop(word);
        default: return readSingleInst(word);
    }
}

static InstNode *readInst(Token *first) {
    guardParse();
    return isWord(first) ? readWordInst(first) : readSingleInst(first);
}

// Reading past the last source ends the program.
InstNode *getInstNode() {
    Token *first = skipSeparators();
    if (first->is(TokenKind::Eof)) leaveProgram(0);
    return readInst(first);
}

}  // namespace vesko

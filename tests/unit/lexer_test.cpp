// The lexer over tricky inputs: kinds, values and texts of tokens, and the character layer below.
#include "frontend/lexer.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "frontend/source.h"
#include "frontend/symbols.h"
#include "house.h"
#include "values/matrix.h"

namespace vesko {

using K = TokenKind;
using Kinds = std::vector<K>;

namespace {

class Lexer : public House {};
class Source : public House {};
class Tables : public House {};
class Names : public House {};

void pushText(const std::string &text) {
    std::FILE *file = std::tmpfile();
    std::fwrite(text.data(), 1, text.size(), file);
    std::rewind(file);
    updateCurrentFile(newStrMatCopy("test"), file);
}

// Tokens of one line, each read in the category of the one before.
std::vector<Token *> lex(const std::string &text, LexStart category = LexStart::Statement) {
    pushText(text);
    std::vector<Token *> tokens;
    for (;;) {
        Token *token = getToken(category);
        if (token->is(K::Newline)) break;
        tokens.push_back(token);
        category = getTokCat(token->kind);
    }
    resetFileList();
    return tokens;
}

Kinds kinds(const std::string &text, LexStart category = LexStart::Statement) {
    Kinds found;
    for (Token *token : lex(text, category)) found.push_back(token->kind);
    return found;
}

double number(const std::string &text) {
    auto tokens = lex(text);
    EXPECT_EQ(tokens.size(), 1u) << text;
    return tokens[0]->number;
}

std::string text(const std::string &source) {
    auto tokens = lex(source);
    EXPECT_EQ(tokens.size(), 1u) << source;
    return tokens[0]->text;
}

TEST_F(Lexer, EveryOperatorBehindAValue) {
    const std::pair<const char *, K> forms[] = {{"+", K::Plus},
                                                {"-", K::Minus},
                                                {">", K::Greater},
                                                {"<", K::Less},
                                                {"*", K::Star},
                                                {"\\", K::Backslash},
                                                {"/", K::Slash},
                                                {"%", K::Percent},
                                                {".*", K::DotStar},
                                                {"./", K::DotSlash},
                                                {"^", K::Caret},
                                                {".^", K::DotCaret},
                                                {"!", K::Bang},
                                                {".", K::Dot},
                                                {":", K::Colon},
                                                {"=>", K::Arrow},
                                                {"=", K::Assign},
                                                {">>", K::Deref},
                                                {"::", K::ForcedType},
                                                {"=>>", K::LinkAssign},
                                                {"#", K::Hash},
                                                {"+=", K::PlusAssign},
                                                {"-=", K::MinusAssign},
                                                {"*=", K::StarAssign},
                                                {".*=", K::DotStarAssign},
                                                {"%=", K::PercentAssign},
                                                {"\\=", K::BackslashAssign},
                                                {"/=", K::SlashAssign},
                                                {"./=", K::DotSlashAssign},
                                                {"^=", K::CaretAssign},
                                                {".^=", K::DotCaretAssign},
                                                {"||", K::OrOr},
                                                {"&&", K::AndAnd},
                                                {"==", K::Equal},
                                                {"!=", K::NotEqual},
                                                {">=", K::GreaterEqual},
                                                {"<=", K::LessEqual},
                                                {"++", K::PlusPlus},
                                                {"--", K::MinusMinus},
                                                {"@", K::At},
                                                {"->", K::RightArrow},
                                                {"<>", K::Diamond},
                                                {"&*", K::FuncMul},
                                                {"&/", K::FuncDiv},
                                                {"-<", K::BranchTail},
                                                {"|-", K::BarMinus},
                                                {"-|", K::MinusBar},
                                                {"<->", K::Connect2Way},
                                                {"<-<", K::ConnectBack},
                                                {">-<", K::ListJoin},
                                                {">->", K::Connect},
                                                {"/\\", K::Intersection},
                                                {"\\/", K::Union},
                                                {"'", K::Quote},
                                                {"(=", K::Subset},
                                                {"-)", K::Contains},
                                                {"=)", K::Superset},
                                                {"(<", K::StrictSubset},
                                                {">)", K::StrictSuperset},
                                                {"(- ", K::MemberOf},
                                                {",", K::Comma},
                                                {";", K::Semicolon},
                                                {"~", K::Tilde},
                                                {"$", K::Dollar}};
    for (auto &[form, kind] : forms)
        EXPECT_EQ(kinds(std::string("a") + form + "b"), (Kinds{K::Identifier, kind, K::Identifier})) << form;
}

TEST_F(Lexer, ACharacterMeansAnotherThingBehindAnotherToken) {
    EXPECT_EQ(kinds("x'"), (Kinds{K::Identifier, K::Quote}));
    EXPECT_EQ(kinds("'a'"), Kinds{K::String});
    EXPECT_EQ(kinds("a = % b"), (Kinds{K::Identifier, K::Assign}));
    EXPECT_EQ(kinds("^a"), Kinds{K::Identifier});
    EXPECT_EQ(kinds("^a", LexStart::Value), (Kinds{K::Caret, K::Identifier}));
}

TEST_F(Lexer, ArrowsThatGoNoFurtherAreTwoTokens) {
    EXPECT_EQ(kinds("a<-1"), (Kinds{K::Identifier, K::Less, K::Minus, K::Number}));
    EXPECT_EQ(kinds("a>-b"), (Kinds{K::Identifier, K::Greater, K::Minus, K::Identifier}));
}

TEST_F(Lexer, NumbersInTheirBases) {
    const std::pair<const char *, double> forms[] = {
        {"2.e+1", 20},       {"1.5E-2", 0.015},  {"123456789012345678901234567890", 1.2345678901234568e29},
        {"1e400", HUGE_VAL}, {"1e-400", 0},      {"4.9e-324", 4.9e-324},
        {"00.5", 0.625},     {"0Xff", 255},      {"0x0.bB", 187.0 / 256},
        {"0b1.01", 1.25},    {"0x100000001", 1}, {"0x0.000000001", HUGE_VAL}};
    for (auto &[form, value] : forms) EXPECT_EQ(number(form), value) << form;
    EXPECT_TRUE(std::isnan(number("0x0.100000000")));
}

TEST_F(Lexer, SuffixesOfNumbers) {
    for (const char *form : {"3Z", "3z"}) EXPECT_EQ(kinds(form), Kinds{K::Integer}) << form;
    EXPECT_EQ(kinds("0x1B"), Kinds{K::Byte});
    EXPECT_EQ(kinds("3L"), Kinds{K::BigInt});
    EXPECT_EQ(text("1.25e3M"), "1.25e3");
    for (const char *form : {"3i", "3j", "3I", "3J", "1.5i", "1e3i", "0b1i", "017i", "0x1i"})
        EXPECT_EQ(kinds(form), Kinds{K::Imaginary}) << form;
    for (const char *form : {"1e3j", "0e5", "0i", "1.5Z"})
        EXPECT_EQ(kinds(form), (Kinds{K::Number, K::Identifier})) << form;
    EXPECT_EQ(kinds("08"), (Kinds{K::Number, K::Number}));
}

TEST_F(Lexer, EscapesOfStrings) {
    const std::pair<const char *, const char *> forms[] = {
        {R"("a\n\t\\\"\'\?\a\b\f\r\v")", "a\n\t\\\"'?\a\b\f\r\v"},
        {R"("\7")", "7"},
        {R"("\1019")", "q9"},
        {R"("\x4")", "4"},
        {R"("\x123")", "B3"},
        {R"("\xg")", "g"},
        {R"("a\qb")", "ab"},
        {R"("")", ""},
        {R"('a\n')", "a\\n"},
        {R"('it\'s')", "it's"},
        {R"('\\')", "\\\\"},
        {"'two\nlines'", "two\nlines"}};
    for (auto &[form, value] : forms) EXPECT_EQ(text(form), value) << form;
}

TEST_F(Lexer, RegularExpressionsAreKeptWhole) {
    EXPECT_EQ(kinds("~/a\\/b/gi"), Kinds{K::Regexp});
    EXPECT_EQ(text("~/a\\/b/gi"), "a\\/b/gi");
    EXPECT_EQ(kinds("~s/a/b/g"), Kinds{K::Regsub});
    EXPECT_EQ(text("~S/a/b/g"), "a/b/g");
    EXPECT_EQ(kinds("~tr/a/b/"), Kinds{K::Translit});
    EXPECT_EQ(text("~tR/a/b/"), "a/b/");
}

TEST_F(Lexer, GroupsAreSingleTokensWithoutTheirLineEnds) {
    auto empty = lex("()");
    ASSERT_EQ(empty.size(), 1u);
    EXPECT_EQ(empty[0]->first, nullptr);
    EXPECT_EQ(kinds("[1, 2] {a} (b)"), (Kinds{K::BracketGroup, K::BraceGroup, K::ParenGroup}));
    Kinds inside;
    for (Token *t = lex("[\n1\n,\n2;\n]")[0]->first; t; t = t->next) inside.push_back(t->kind);
    EXPECT_EQ(inside, (Kinds{K::Number, K::Comma, K::Number, K::Semicolon}));
}

TEST_F(Lexer, KeywordsAndNames) {
    EXPECT_EQ(kinds("in parent global builtin to as this if"),
              (Kinds{K::In, K::Parent, K::Global, K::Builtin, K::To, K::As, K::This, K::Keyword}));
    auto words = lex("iff _a1 `b");
    EXPECT_EQ(words[0]->kind, K::Identifier);
    EXPECT_STREQ(getSymbolName(words[2]->symbol), "`b");
}

TEST_F(Lexer, LongTexts) {
    std::string name(1 << 20, 'n');
    auto tokens = lex(name + " = 1");
    ASSERT_EQ(tokens.size(), 3u);
    EXPECT_EQ(getSymbolName(tokens[0]->symbol), name);
    EXPECT_EQ(text("\"" + name + "\""), name);
}

TEST_F(Lexer, NulBytesEndLinesAndTexts) {
    EXPECT_EQ(kinds(std::string("a \0 b", 5)), Kinds{K::Identifier});
    EXPECT_EQ(kinds(std::string("a\0 b", 4)), (Kinds{K::Identifier, K::Identifier}));
    EXPECT_EQ(text(std::string("\"ab\0c\"", 6)), "ab");
}

TEST_F(Lexer, TheMatchedTokensLineCountsFromOne) {
    pushText("a\nb\n\n[c,\nd] e\n");
    std::vector<uint32_t> lines;
    LexStart category = LexStart::Statement;
    for (int k = 0; k < 7; ++k) {
        Token *token = getToken(category);
        lines.push_back(token->line);
        category = getTokCat(token->kind);
    }
    resetFileList();
    // a, its line end, b, its line end, an empty line, the group that ends on line 5, e
    EXPECT_EQ(lines, (std::vector<uint32_t>{1, 1, 2, 2, 3, 5, 5}));
}

void expectAbort(const char *form) {
    EXPECT_ABORT(lex(form));
    resetFileList();
}

TEST_F(Lexer, WhatIsNoTokenEndsTheCommand) {
    for (const char *form : {"a & b", "1e+", "1..2", "a ... b", "\x7f", "\x01", "0b + 1"}) expectAbort(form);
}

TEST_F(Source, LineEndsOfAllKinds) {
    pushText("a\r\nb\rc\n\rd");
    std::string read;
    for (int c; (c = readch()) != end_of_input;) read += static_cast<char>(c);
    EXPECT_EQ(read, "a\nb\nc\n\nd");
    EXPECT_EQ(getCurrLineNum(), 5u);
    resetFileList();
}

TEST_F(Source, ThreeCharactersCanBePushedBackAndComeBackLastFirst) {
    pushText("z\n");
    for (char c : {'a', '\n', 'c'}) setExtraCh(c);
    for (char c : {'c', '\n', 'a', 'z'}) EXPECT_EQ(nextChar(), c);
    setExtraCh(end_of_input);
    EXPECT_EQ(nextChar(), end_of_input);
    for (char c : {'x', '\0'}) setExtraCh(c);
    EXPECT_EQ(nextChar(), '\n');
    for (char c : {'a', 'b', 'c'}) setExtraCh(c);
    EXPECT_ABORT(setExtraCh('d'));
    resetFileList();
}

TEST_F(Source, ALineEndThatIsReadAgainCountsOnce) {
    pushText("\nx");
    EXPECT_EQ(nextChar(), '\n');
    EXPECT_EQ(getCurrLineNum(), 1u);
    setExtraCh('\n');
    EXPECT_EQ(getCurrLineNum(), 1u);
    EXPECT_EQ(nextChar(), '\n');
    EXPECT_EQ(nextChar(), 'x');
    EXPECT_EQ(getCurrLineNum(), 2u);
    resetFileList();
}

TEST_F(Source, TheByte0xFFReadsLikeTheEndOfTheFile) {
    pushText(
        "a\xff"
        "b\n");
    EXPECT_EQ(readch(), 'a');
    EXPECT_EQ(readch(), end_of_input);
    EXPECT_EQ(readch(), 'b');
    resetFileList();
}

TEST_F(Source, AFileWithoutALineEndLetsTheNextSourceEndToo) {
    pushText("below\n");
    pushText("x");
    EXPECT_TRUE(getToken(LexStart::Statement)->is(K::Identifier));
    EXPECT_TRUE(getToken(LexStart::Value)->is(K::Newline));
    EXPECT_EQ(filelist->next, nullptr);
}

TEST_F(Tables, KeywordsAreFoundInTextThatGoesOn) {
    EXPECT_EQ(isKeyword("untill"), KeywordId::Until);
    for (const char *word : {"untilll", "unti", ""}) EXPECT_EQ(isKeyword(word), KeywordId::NotFound) << word;
    EXPECT_EQ(isKeywordH("end)", 4), KeywordId::End);
    EXPECT_EQ(isKeywordH("end_x", 5), KeywordId::End);
    EXPECT_EQ(isKeywordH("end1", 4), KeywordId::NotFound);
    EXPECT_EQ(isKeywordH("endX", 4), KeywordId::NotFound);
    EXPECT_STREQ(getKeywordName(KeywordId::Readonly), "");
}

TEST_F(Tables, CodesWithoutAnOperatorAreHarmless) {
    EXPECT_EQ(getTokOpr(K::Tilde), Opr::None);
    EXPECT_EQ(getTokOpr(static_cast<K>(150)), Opr::None);
    EXPECT_STREQ(opr2str(static_cast<Opr>(205)), "undefined");
    EXPECT_EQ(thePriorityOf(Opr::None), 0);
}

TEST_F(Tables, TextsOfTokensForMessages) {
    Token token = {};
    token.kind = K::OrOr;
    EXPECT_STREQ(tok2str(&token), "|");
    token.kind = static_cast<K>(150);
    EXPECT_STREQ(tok2str(&token), "???");
    EXPECT_STREQ(tok2str(nullptr), "EOF");
}

TEST_F(Names, NumbersOfNamesStayWhileTheTablesGrow) {
    const uint32_t a = findSymbolIndex("some_name");
    EXPECT_EQ(rtFindFieldIndexByStr("some_name"), not_found);
    const uint32_t f = findFieldIndexByStr("some_name");
    EXPECT_EQ(rtFindFieldIndexByStr("some_name"), f);
    EXPECT_EQ(getFieldSymbol(f), a);
    for (int k = 0; k < 5000; ++k) findSymbolIndex(("grown" + std::to_string(k)).c_str());
    EXPECT_EQ(findSymbolIndex("some_name"), a);
    EXPECT_EQ(findSymbolIndex("grown7"), findSymbolIndex("grown8") - 1);
}

}  // namespace

}  // namespace vesko

// Literals of patterns, ~/pattern/options and ~s/pattern/replacement/options: functions that are made when
// the source is parsed. The text of a token begins with the pattern.
#include <string_view>

#include "builtins/regexp.h"
#include "frontend/builders.h"
#include "frontend/parser.h"
#include "operators/text_builder.h"

namespace vesko {

static size_t blocateSlash(std::string_view text) { return text.rfind('/'); }

// The first slash that no backslash protects.
static size_t flocateSlash(std::string_view text) {
    for (size_t k = 0; k < text.size(); k++) {
        if (text[k] == '/') return k;
        if (text[k] == '\\') k++;
    }
    return text.npos;
}

static Matrix *xstringCut(std::string_view text, size_t first, size_t end) {
    return newStrMatCopyN(text.data() + first, static_cast<uint32_t>(end - first));
}

// Without the backslashes that protect a slash.
static Matrix *xstringCut_rexsub_substr(std::string_view text, size_t first, size_t end) {
    TextBuilder out(static_cast<uint32_t>(end - first));
    for (size_t k = first; k < end; k++)
        if (text[k] != '\\' || text[k + 1] != '/') out.add(text.substr(k, 1));
    return out.finish();
}

[[noreturn]] static void refusePattern(uint32_t line) {
    syntaxError(line, "regular expression compile failed");
}

static PcNode *newFunctionNode(Matrix *texts, uint32_t line) {
    Matrix *function = newPatternFunction(texts);
    releaseMat(texts);
    if (!function) refusePattern(line);
    return newMatPcNode(function, line);
}

// A NUL in the source cuts the text of the token, so that the slashes may be missing.
PcNode *newRegexpNode(const Token *token) {
    const std::string_view text = token->text;
    const size_t slash = blocateSlash(text);
    if (slash == text.npos) refusePattern(token->line);
    Matrix *texts = newListMat(2);
    addListEntry(texts, xstringCut(text, 0, slash));
    addListEntry(texts, xstringCut(text, slash + 1, text.size()));
    return newFunctionNode(texts, token->line);
}

PcNode *newRegsubNode(const Token *token) {
    const std::string_view text = token->text;
    const size_t first = flocateSlash(text), last = blocateSlash(text);
    if (first == text.npos || first == last) refusePattern(token->line);
    Matrix *texts = newListMat(3);
    addListEntry(texts, xstringCut(text, 0, first));
    addListEntry(texts, xstringCut_rexsub_substr(text, first + 1, last));
    addListEntry(texts, xstringCut(text, last + 1, text.size()));
    return newFunctionNode(texts, token->line);
}

}  // namespace vesko

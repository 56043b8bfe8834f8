// The built-in `split`: a text cut at each separator.
#include <algorithm>

#include "builtins/arguments.h"
#include "builtins/regexp_match.h"
#include "builtins/workers.h"
#include "engine/errors.h"

namespace vesko {

namespace {

void addPiece(Matrix *pieces, std::string_view piece) {
    addListEntry(pieces, newStrMatCopyN(piece.data(), static_cast<uint32_t>(piece.size())));
}

// ---- At a text

uint32_t chrOccurCount(std::string_view text, char c) {
    return static_cast<uint32_t>(std::count(text.begin(), text.end(), c));
}

// An empty separator occurs nowhere.
uint32_t strOccurCount(std::string_view text, std::string_view separator) {
    uint32_t count = 0;
    if (separator.empty()) return count;
    for (size_t at = text.find(separator); at != text.npos; at = text.find(separator, at + separator.size()))
        count++;
    return count;
}

Matrix *splitXstringByStr(Matrix *string, std::string_view separator) {
    std::string_view text = textOf(string);
    const uint32_t count =
        separator.size() == 1 ? chrOccurCount(text, separator[0]) : strOccurCount(text, separator);
    if (count == 0) return string;
    Matrix *pieces = newListMat(count + 1);
    for (uint32_t k = 0; k < count; k++) {
        const size_t at = text.find(separator);
        addPiece(pieces, text.substr(0, at));
        text.remove_prefix(at + separator.size());
    }
    addPiece(pieces, text);
    return pieces;
}

// ---- At the matches of a pattern

Matrix *splitXstringByRegexp(Matrix *string, const Matrix *compiled) {
    const std::string_view text = textOf(string);
    Matrix *matches = regexp_match_all(compiled, text);
    if (ISEMPTY(matches)) return string;
    Matrix *pieces = newListMat(matches->nrows + 1);
    int32_t begin = 0;
    for (uint32_t k = 0; k < matches->nrows; k++) {
        const int32_t *match = matches->ints() + size_t{k} * matches->ncols;
        const int32_t end = std::max(match[0] - 1, begin);  // a match may end before it begins
        addPiece(pieces, text.substr(begin, end - begin));
        begin = match[1];
    }
    addPiece(pieces, text.substr(begin));
    releaseMat(matches);
    return pieces;
}

Matrix *splitAt(Matrix *string, const Matrix *separator, PcNode *node) {
    if (separator->l2type == L2::TX) return splitXstringByStr(string, textOf(separator));
    const Matrix *pattern = patternOf(separator);
    if (!pattern) refuseArgument(node, "split");
    if (!isCompiled(pattern)) error_regexp_compile(node);
    return splitXstringByRegexp(string, pattern);
}

}  // namespace

Matrix *split_bf(Matrix *args, Matrix **, PcNode *node) {
    const bool several = isList(args->l2type);
    if (several && args->length != 2) refuseArgument(node, "split");
    Matrix *string = several ? args->entries()[0] : args;
    if (string->l2type != L2::TX) error_bf_argk_domain(node, "split", 0);
    return several ? splitAt(string, args->entries()[1], node) : splitXstringByStr(string, " ");
}

}  // namespace vesko

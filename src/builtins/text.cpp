// Built-ins on texts: trimming, comparing, making.
#include <algorithm>
#include <cctype>

#include "builtins/arguments.h"
#include "builtins/regexp_match.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {

// ---- Trimming

static bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)); }

// Trimming one side of a text that has nothing to trim there gives the text itself; trimming both sides gives
// a copy of a text of several characters in any case.
static Matrix *trimSides(Matrix *string, bool left, bool right, const char *builtin, PcNode *node) {
    if (string->l2type != L2::TX) refuseArgument(node, builtin);
    std::string_view text = textOf(string);
    while (left && !text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (right && !text.empty() && isSpace(text.back())) text.remove_suffix(1);
    const bool copies = left && right && text.size() > 1;
    if (text.size() == string->length && !copies) return string;
    return newStrMatCopyN(text.data(), static_cast<uint32_t>(text.size()));
}

Matrix *trim_bf(Matrix *args, Matrix **, PcNode *node) { return trimSides(args, true, true, "trim", node); }
Matrix *ltrim_bf(Matrix *args, Matrix **, PcNode *node) {
    return trimSides(args, true, false, "ltrim", node);
}
Matrix *rtrim_bf(Matrix *args, Matrix **, PcNode *node) {
    return trimSides(args, false, true, "rtrim", node);
}

// ---- Comparing

static bool isRealScalar(const Matrix *m) {
    double x;
    return extract_RS(m, x);
}

const BfParm strcmp_parms[1] = {{"ignorecase", theFalseMat, isRealScalar}};

static int asItIs(int c) { return c; }

// The difference of the first characters that differ, as far as the first NUL.
template <class Fold>
static int32_t compareTexts(const uint8_t *a, const uint8_t *b, Fold fold) {
    while (*a && fold(*a) == fold(*b)) a++, b++;
    return fold(*a) - fold(*b);
}

Matrix *strcmp_bf(Matrix *args, Matrix **parms, PcNode *node) {
    const uint32_t given = isList(args->l2type) ? args->length : 1;
    if (given != 2) error_bf_nargs(node, "strcmp", static_cast<int32_t>(given), 2);
    Matrix **strings = args->entries();
    for (int32_t k = 0; k < 2; k++)
        if (strings[k]->l2type != L2::TX) error_bf_argk_domain(node, "strcmp", k);
    double ignore_case = 0;
    extract_RS(parms[0], ignore_case);
    const uint8_t *a = strings[0]->bytes(), *b = strings[1]->bytes();
    return newIntScalarMat(ignore_case != 0 ? compareTexts(a, b, toupper) : compareTexts(a, b, asItIs));
}

// ---- Making

Matrix *newstring_bf(Matrix *args, Matrix **, PcNode *node) {
    int32_t n;
    if (!extract_integer(args, n) || n < 0) refuseArgument(node, "newstring");
    Matrix *blanks = newStrMat(checkedLength(uint64_t(n) + 1, 1));
    std::fill_n(blanks->text(), n, ' ');
    return blanks;
}

// The code is a whole number of 32 bits without a sign.
Matrix *hashcode_bf(Matrix *args, Matrix **, PcNode *) { return newRealScalarMat(getMatHashCode(args)); }

}  // namespace vesko

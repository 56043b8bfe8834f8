// Matches of a pattern in a text, as rows of positions.
#include "builtins/regexp_match.h"

#include "builtins/regexp_search.h"
#include "operators/growth.h"

namespace vesko {

unsigned getReOptions(std::string_view options) {
    unsigned bits = 0;
    for (const char letter : options) switch (letter) {
            case 'i': bits |= 1; break;
            case 'm': bits |= 2; break;
            case 'a': bits |= 4; break;
        }
    return bits;
}

static uint32_t rowLength(const Search &search) { return 2 * (search.groups() + 1); }

// The text that was searched begins at `base`.
static void putRow(int32_t *row, const Search &search, int32_t base) {
    for (uint32_t k = 0; k <= search.groups(); k++) {
        const bool took_part = search.start(k) >= 0;
        *row++ = took_part ? base + search.start(k) + 1 : -1;
        *row++ = took_part ? base + search.end(k) : -1;
    }
}

Matrix *regexp_match_one(const Matrix *compiled, std::string_view text) {
    Search search(compiled, text);
    Matrix *row = theEmptyMat();
    if (search.findIn(text)) {
        row = newIntMat(1, rowLength(search));
        putRow(row->ints(), search, 0);
    }
    search.finish();
    return row;
}

// Where the search goes on behind the last match, from the place where that one began; an empty match steps
// over one character.
static size_t stepOf(const Search &search) { return static_cast<size_t>(search.end()) + search.isEmpty(); }

Matrix *regexp_match_all(const Matrix *compiled, std::string_view text) {
    Search search(compiled, text);
    const uint32_t width = rowLength(search);
    Matrix *rows = newIntMat(1, width);
    uint32_t count = 0;
    for (size_t base = 0; search.findIn(text.substr(base));) {
        if (count == rows->nrows) rows = imGetNewRow(rows, 2 * count);
        putRow(rows->ints() + size_t{count++} * width, search, static_cast<int32_t>(base));
        if (base + search.end() == text.size()) break;
        base += stepOf(search);
        if (base == text.size()) break;
    }
    search.finish();
    rows->nrows = count;
    rows->length = count * width;
    if (count) return rows;
    releaseMat(rows);
    return theEmptyMat();
}

}  // namespace vesko

// One search after another with the same compiled pattern.
#pragma once

#include <string_view>

#include "values/matrix.h"

namespace vesko {

struct CompiledPattern;

// Lives on the stack of one match or substitution; finish() gives its scratch back.
class Search {
public:
    Search(const Matrix *compiled, std::string_view text);
    bool findIn(std::string_view text);  // the first match in the text; a moved view makes it begin there
    void finish() { releaseMat(offsets); }

    uint32_t groups() const;
    // Of the last match, group 0 being the whole: offsets from 0, the end excluded; -1 for none.
    int32_t start(uint32_t group = 0) const { return offsets->ints()[2 * group]; }
    int32_t end(uint32_t group = 0) const { return offsets->ints()[2 * group + 1]; }
    bool isEmpty() const { return end() <= start(); }

private:
    CompiledPattern *pattern;
    Matrix *offsets;
};

}  // namespace vesko

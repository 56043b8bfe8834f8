// Strings as they are read, and strings under construction.
#pragma once

#include <algorithm>
#include <cstring>
#include <string_view>

#include "operators/growth.h"

namespace vesko {

inline std::string_view textOf(const Matrix *string) { return {string->text(), string->length}; }

// The string is a temporary that growth may replace: nothing else may hold it. What is added must not be a
// part of it. A length that no record can hold ends the command.
class TextBuilder {
public:
    explicit TextBuilder(uint32_t expected_length)
        : result(newStrMat(checkedLength(expected_length + 1u, 1))) {
        setLength(0);
    }

    void add(std::string_view text) {
        if (text.empty()) return;
        reserve(uint64_t{result->length} + text.size() + 1);
        std::memcpy(result->text() + result->length, text.data(), text.size());
        setLength(result->length + static_cast<uint32_t>(text.size()));
    }
    Matrix *finish() const { return result; }

private:
    void reserve(uint64_t size) {
        constexpr uint64_t longest = 0x7FFFFFFF;
        if (size <= result->cap) return;
        result = strmat_extend_cap(result, std::max(size, std::min(uint64_t{result->cap} * 2, longest)));
    }
    void setLength(uint32_t n) {
        result->text()[n] = 0;
        result->length = n;
        result->ncols = n + 1;
    }

    Matrix *result;
};

}  // namespace vesko

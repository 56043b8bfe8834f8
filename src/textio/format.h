// Formats of printing and scanning: text in which slots, from a percent sign to a conversion, stand for
// values.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

// A doubled percent sign stands for one. A percent sign behind a backslash is no slot.
enum class PercentPairs { Literal, Slot };  // Literal: they are passed over with the text

constexpr size_t no_slot = std::string_view::npos;
size_t findSlot(std::string_view format, size_t from, PercentPairs pairs);
uint32_t countPercent(std::string_view format, PercentPairs pairs);

// Walks over the parts of a slot, in their order.
class SlotReader {
public:
    SlotReader(std::string_view format, size_t from) : format_(format), at_(from) {}
    size_t at() const { return at_; }
    char next() const { return at_ < format_.size() ? format_[at_] : '\0'; }  // NUL at the end
    template <class... Char>
    bool nextIs(Char... one_of) const {
        return ((next() == one_of) || ...);
    }
    template <class... Char>
    bool pass(Char... one_of) {
        const bool passed = nextIs(one_of...);
        at_ += passed;
        return passed;
    }
    uint32_t passNumber() {  // a huge one counts as the largest; 0 if there is none
        uint64_t n = 0;
        for (; next() >= '0' && next() <= '9'; at_++)
            n = std::min<uint64_t>(n * 10 + (next() - '0'), UINT32_MAX);
        return static_cast<uint32_t>(n);
    }
    bool passBehind(char c) {  // false if it does not come any more
        const size_t found = format_.find(c, at_);
        if (found == std::string_view::npos) return false;
        at_ = found + 1;
        return true;
    }

private:
    std::string_view format_;
    size_t at_;
};

// What takes formatted text.
class TextSink {
public:
    virtual void add(std::string_view text) = 0;

protected:
    ~TextSink() = default;
};

// Prints the items through the format. The number of items must be that of the slots, and each must be a
// scalar or a text that its slot accepts; what stands before a refused one has been printed.
void printItems(TextSink &sink, const Matrix *format, Matrix *const *items, uint32_t n, PcNode *node);

}  // namespace vesko

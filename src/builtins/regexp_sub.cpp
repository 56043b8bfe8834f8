// Substitution of matches, with references to groups in the replacement.
//
// All matches are replaced in one pass over the text, with the result of replacing the first one again and
// again, each time behind the text that was put in.
#include "builtins/regexp_match.h"

#include "builtins/regexp_search.h"
#include "operators/text_builder.h"

namespace vesko {

namespace {

bool isReference(std::string_view s) { return s.size() > 1 && s[0] == '\\' && s[1] >= '1' && s[1] <= '9'; }

// Takes the number off the head of s; one that is too large for any group stays so.
uint32_t takeNumber(std::string_view &s) {
    constexpr uint32_t no_group = 1'000'000;
    uint32_t number = 0;
    for (; !s.empty() && s[0] >= '0' && s[0] <= '9'; s.remove_prefix(1))
        number = std::min(number * 10 + static_cast<uint32_t>(s[0] - '0'), no_group);
    return number;
}

std::string_view groupOf(const Search &search, std::string_view text, uint32_t k) {
    if (k > search.groups() || search.start(k) < 0 || search.end(k) <= search.start(k)) return {};
    return text.substr(search.start(k), search.end(k) - search.start(k));
}

// Adds the replacement: \1, \2 ... \12 ... stand for groups, one that there is not or that took no part for
// nothing. All other backslashes stand for themselves.
void str_backref_plugin(TextBuilder &out, const Search &search, std::string_view text, std::string_view s) {
    while (!s.empty()) {
        if (isReference(s)) {
            s.remove_prefix(1);
            out.add(groupOf(search, text, takeNumber(s)));
        } else {
            const std::string_view plain = s.substr(0, s.find('\\', 1));
            out.add(plain);
            s.remove_prefix(plain.size());
        }
    }
}

// A substitution under way: `rest` is what no match has consumed yet.
class Substitution {
public:
    Substitution(const Matrix *compiled, std::string_view text, std::string_view by)
        : search(compiled, text), rest(text), replacement(by), out(static_cast<uint32_t>(text.size())) {}

    // Replaces the next match, if there is one.
    bool step() {
        if (!search.findIn(rest)) return false;
        const bool stands_still = search.end() == 0;
        if (!(stands_still && search.isEmpty() && behind_empty)) replaceMatch();
        behind_empty = search.isEmpty();
        rest.remove_prefix(search.end());
        if (stands_still) stepOver();
        found = true;
        return true;
    }
    bool atEnd() const { return rest.empty(); }

    Matrix *finish() {
        search.finish();
        out.add(rest);
        if (found) return out.finish();
        releaseMat(out.finish());
        return nullptr;
    }

private:
    void replaceMatch() {
        out.add(rest.substr(0, search.start()));
        str_backref_plugin(out, search, rest, replacement);
    }

    // A match that consumes nothing would be found again for ever: the next search begins behind one more
    // character.
    void stepOver() {
        out.add(rest.substr(0, 1));
        rest.remove_prefix(!rest.empty());
        behind_empty = false;
    }

    Search search;
    std::string_view rest, replacement;
    TextBuilder out;
    bool found = false;
    bool behind_empty = false;  // the text put in last took the place of nothing, right before `rest`
};

}  // namespace

Matrix *regexp_sub_one(const Matrix *compiled, std::string_view text, std::string_view replacement) {
    Substitution substitution(compiled, text, replacement);
    substitution.step();
    return substitution.finish();
}

Matrix *regexp_sub_all(const Matrix *compiled, std::string_view text, std::string_view replacement) {
    Substitution substitution(compiled, text, replacement);
    while (!substitution.atEnd() && substitution.step()) {
    }
    return substitution.finish();
}

}  // namespace vesko

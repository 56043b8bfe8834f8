// Compiled patterns, their matches and substitutions.
//
// A match is a row of whole numbers: for the whole match and then for each group its start and end, counted
// from 1, the end included; -1 twice for a group that took no part. A search goes on behind the last match as
// if the text began there: `^` holds at that place, and nothing before it is seen.
//
// A search that costs too much counts as one that finds nothing. An interrupt may leave any search.
#pragma once

#include <cstdint>
#include <string_view>

#include "operators/text_builder.h"
#include "values/matrix.h"

namespace vesko {

void initPatterns();  // once, at start, before the first pattern is compiled

// The letters i, m and a, each as a bit. All have the effect of i.
unsigned getReOptions(std::string_view options);

// The compiled pattern, a temporary of kind REGEXP. One that does not compile has no payload.
Matrix *regexp_comp(const Matrix *pattern, unsigned options);
inline bool isCompiled(const Matrix *pattern) { return pattern->vdata != nullptr; }

// The functions below demand a pattern that did compile. Results are temporaries.
Matrix *regexp_match_one(const Matrix *compiled, std::string_view text);  // no match: the empty value
Matrix *regexp_match_all(const Matrix *compiled, std::string_view text);  // a row for each match
// The text with the first match, or each, replaced; null without a match.
Matrix *regexp_sub_one(const Matrix *compiled, std::string_view text, std::string_view replacement);
Matrix *regexp_sub_all(const Matrix *compiled, std::string_view text, std::string_view replacement);

}  // namespace vesko

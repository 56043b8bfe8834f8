// The table of pair codes: what a pair of detailed kinds means to the operator ladders.
#include <algorithm>
#include <iterator>

#include "operators/ladders.h"

namespace vesko {

uint8_t num_type_match_code[n_match_kinds * n_match_kinds];

namespace {

constexpr uint8_t X = no_match;

// The kinds that have codes, in the order of rows and columns.
constexpr L2 coded[] = {
    L2::RNG, L2::BY,     L2::BI,   L2::UPPER, L2::LOWER, L2::SYMM, L2::BAND, L2::SPARSE,
    L2::PM,  L2::BIGINT, L2::MPF,  L2::CS,    L2::CM,    L2::LS,   L2::VL,   L2::UF,
    L2::BF,  L2::OBJ,    L2::RMDM, L2::CMDM,  L2::TX,    L2::ITV,
};
constexpr unsigned n_coded = std::size(coded);

// clang-format off
constexpr uint8_t codes[n_coded][n_coded] = {
    { 0,  2,  2,  1,  1,  1,  2,  2,  1,  2,  7,  8,  9, 10, 10, 85, 85,  X,  X,  X, 11,  X},  // RNG
    { 2, 12, 12,  1,  1,  1,  2,  2,  1,  6,  7,  8,  9, 10, 10, 85, 85,  X,  3,  4, 13, 84},  // BY
    { 2, 12, 14,  1,  1,  1,  2,  2,  1,  6,  7,  8,  9, 10, 10, 85, 85,  X,  3,  4, 13, 84},  // BI
    { 5,  5,  5, 15, 16, 17, 18, 19, 20,  5,  7,  8,  9, 10, 10, 85, 85,  X,  X,  X,  X,  X},  // UPPER
    { 5,  5,  5, 21, 22, 23, 24, 25, 26,  5,  7,  8,  9, 10, 10, 85, 85,  X,  X,  X,  X,  X},  // LOWER
    { 5,  5,  5, 27, 28, 29, 30, 31, 32,  5,  7,  8,  9, 10, 10, 85, 85,  X,  X,  X,  X,  X},  // SYMM
    { 2,  2,  2, 39, 40, 41, 42, 43, 44,  2,  7,  8,  9, 10, 10, 85, 85,  X,  X,  X,  X,  X},  // BAND
    { 2,  2,  2, 45, 46, 47, 48, 49, 50,  2,  7,  8,  9, 10, 10, 85, 85,  X,  X,  X,  X,  X},  // SPARSE
    { 5,  5,  5, 33, 34, 35, 36, 37, 38,  5,  7,  8,  9, 10, 10, 85, 85,  X,  X,  X,  X,  X},  // PM
    { 2, 51, 51,  1,  1,  1,  2,  2,  1, 52,  7,  8,  9, 10, 10, 85, 85,  X,  3,  4, 11, 84},  // BIGINT
    {53, 53, 53, 53, 53, 53, 53, 53, 53, 53, 54,  8,  9, 10, 10, 85, 85,  X,  3,  4, 11, 84},  // MPF
    {55, 55, 55, 55, 55, 55, 55, 55, 55, 55, 55, 56, 57, 10, 10, 85, 85,  X, 58, 59,  X,  X},  // CS
    {60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 61, 62, 10, 10, 85, 85,  X,  X,  X,  X,  X},  // CM
    {63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 64, 64, 63, 63, 63, 63, 63, 63,  X},  // LS
    {63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 64, 64, 63, 63, 63, 63, 63, 63,  X},  // VL
    {66, 66, 66, 66, 66, 66, 66, 66, 66, 66, 66, 66, 66, 65, 65, 85, 85, 66, 66, 66, 66,  X},  // UF
    {68, 68, 68, 68, 68, 68, 68, 68, 68, 68, 68, 68, 68, 67, 67, 85, 85, 68, 68, 68, 68,  X},  // BF
    {69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69, 69,  X},  // OBJ
    { X, 70, 70,  X,  X,  X,  X,  X,  X, 70, 70, 71,  X, 10, 10, 85, 85,  X, 72, 73,  X,  X},  // RMDM
    { X, 74, 74,  X,  X,  X,  X,  X,  X, 74, 74, 75,  X, 10, 10, 85, 85,  X, 76, 77,  X,  X},  // CMDM
    {78, 78, 78,  X,  X,  X,  X,  X,  X, 78, 78,  X,  X, 10, 10, 85, 85,  X,  X,  X, 79,  X},  // TX
    { X, 83, 83,  X,  X,  X,  X,  X,  X, 83, 83,  X,  X,  X,  X,  X,  X,  X,  X,  X,  X, 82},  // ITV
};
// clang-format on

}  // namespace

void fillMatchCodes() {
    std::fill(std::begin(num_type_match_code), std::end(num_type_match_code), no_match);
    for (unsigned i = 0; i < n_coded; i++)
        for (unsigned j = 0; j < n_coded; j++)
            num_type_match_code[index(coded[i]) * n_match_kinds + index(coded[j])] = codes[i][j];
}

}  // namespace vesko

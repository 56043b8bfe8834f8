// Sets of kinds of values, for the tables of what values answer to the dot.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "values/matrix.h"

namespace vesko {

struct KindSet {
    uint64_t bits = 0;

    constexpr KindSet() = default;
    constexpr KindSet(L2 kind) : bits(uint64_t{1} << index(kind)) {}
    constexpr KindSet(std::initializer_list<L2> kinds) {
        for (L2 kind : kinds) bits |= uint64_t{1} << index(kind);
    }
    constexpr bool has(L2 kind) const { return bits >> index(kind) & 1; }
    constexpr KindSet operator|(KindSet other) const {
        KindSet both;
        both.bits = bits | other.bits;
        return both;
    }
};

namespace kinds {

// Triangular, symmetric and processed matrices have the storage of real ones.
constexpr KindSet reals = {L2::RS, L2::RM, L2::UPPER, L2::LOWER, L2::SYMM, L2::PM};
constexpr KindSet real_matrices = {L2::RM, L2::UPPER, L2::LOWER, L2::SYMM, L2::PM};
constexpr KindSet integers = {L2::IS, L2::IM};
constexpr KindSet range = L2::RNG;
constexpr KindSet complexes = {L2::CS, L2::CM};
constexpr KindSet bytes = L2::BY;
constexpr KindSet bits = {L2::BY, L2::BI};  // bytes and binary values
constexpr KindSet scalars = {L2::RS, L2::IS, L2::CS};
constexpr KindSet structured = {L2::BAND, L2::SPARSE};
constexpr KindSet extended = {L2::BIGINT, L2::MPF};
constexpr KindSet multidim = {L2::RMDM, L2::CMDM};
constexpr KindSet lists = {L2::LS, L2::VL};
constexpr KindSet sets = {L2::FSET, L2::HASH};
constexpr KindSet dense = reals | integers | range | bits | complexes;
constexpr KindSet ordered_matrices = real_matrices | L2::IM | range | bits | structured;
constexpr KindSet ordered = reals | integers | range | bits | structured;
constexpr KindSet summable = reals | integers | range | bytes | complexes | structured;
constexpr KindSet numeric = dense | structured | extended;

constexpr KindSet all() {
    KindSet set;
    set.bits = (uint64_t{1} << n_kinds) - 1;
    return set;
}

}  // namespace kinds

}  // namespace vesko

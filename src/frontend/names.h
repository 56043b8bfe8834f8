// The record of a name: what the numberings of symbols, fields, globals and top-level variables know of it.
#pragma once

#include <cstdint>

namespace vesko {

struct Name {
    uint32_t hash;
    uint32_t field;   // numbers of the name in the other tables, or not_found
    uint32_t global;  // the newest entry
    uint32_t topvar;
    const char *text;
};

void initNames();
Name *nameOf(uint32_t symbol);

}  // namespace vesko

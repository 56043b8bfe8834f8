// Symbols and field names: every name is interned once, and compared as a number from then on.
#include "frontend/names.h"

#include <cassert>
#include <cstring>

#include "engine/interrupt.h"
#include "frontend/symbols.h"
#include "values/memory.h"

namespace vesko {

uint32_t SYMBOL_INDEX_APPLY, SYMBOL_INDEX_APPROVE, SYMBOL_INDEX_VALIDATE, SYMBOL_INDEX_WITHDRAW,
    SYMBOL_INDEX_AUTO_REAPPLY, SYMBOL_INDEX_GET, SYMBOL_INDEX_PUT, SYMBOL_INDEX_STATES, SYMBOL_INDEX_NPORTS;

static Vector *symbol_table;      // Name, by symbol
static Vector *field_name_table;  // symbols, by field

// Open addressing over the symbols, at most half full: a symbol plus 1, or 0.
static uint32_t *places;
static uint32_t nplaces;

Name *nameOf(uint32_t symbol) {
    assert(symbol < symbol_table->size);
    return symbol_table->at<Name>(symbol);
}

// ---- Hashing

static uint32_t hashOf(const char *text) {
    uint32_t h = 0;
    for (; *text; ++text) h = h * 31 + static_cast<uint32_t>(static_cast<signed char>(*text));
    return h;
}

uint32_t getHashCode(const char *text) {
    constexpr uint32_t buckets = 1023;
    return hashOf(text) % buckets;
}

static void enterPlace(uint32_t *table, uint32_t size, uint32_t symbol) {
    uint32_t at = nameOf(symbol)->hash & (size - 1);
    while (table[at]) at = (at + 1) & (size - 1);
    table[at] = symbol + 1;
}

static void growPlaces() {
    uint32_t size = nplaces * 2;
    uint32_t *grown = mallocArray<uint32_t>(size);
    holdInterrupt();
    std::memset(grown, 0, size * sizeof *grown);
    for (uint32_t k = 0; k < symbol_table->size; ++k) enterPlace(grown, size, k);
    m_free(places, nplaces * sizeof *places);
    places = grown;
    nplaces = size;
    freeInterrupt();
}

// ---- Symbols

static Name *newName(const char *text, uint32_t hash) {
    size_t size = std::strlen(text) + 1;
    auto *name = static_cast<Name *>(m_malloc(sizeof(Name) + size));
    void *copy = std::memcpy(name + 1, text, size);
    *name = {hash, not_found, not_found, not_found, static_cast<char *>(copy)};
    return name;
}

static uint32_t addSymbol(const char *text, uint32_t hash) {
    if ((symbol_table->size + 1) * 2 > nplaces) growPlaces();
    Name *name = newName(text, hash);
    holdInterrupt();
    uint32_t symbol = addElement(symbol_table, name);
    enterPlace(places, nplaces, symbol);
    freeInterrupt();
    return symbol;
}

uint32_t findSymbolIndex(const char *text) {
    uint32_t hash = hashOf(text);
    for (uint32_t at = hash & (nplaces - 1); places[at]; at = (at + 1) & (nplaces - 1)) {
        const Name *name = nameOf(places[at] - 1);
        if (name->hash == hash && !std::strcmp(name->text, text)) return places[at] - 1;
    }
    return addSymbol(text, hash);
}

const char *getSymbolName(uint32_t symbol) { return nameOf(symbol)->text; }

// ---- Fields

uint32_t findFieldIndex(uint32_t symbol) {
    Name *name = nameOf(symbol);
    if (name->field == not_found) {
        holdInterrupt();
        name->field = addElement(field_name_table, asEntry(symbol));
        freeInterrupt();
    }
    return name->field;
}

uint32_t findFieldIndexByStr(const char *text) { return findFieldIndex(findSymbolIndex(text)); }
uint32_t rtFindFieldIndexByStr(const char *text) { return nameOf(findSymbolIndex(text))->field; }
uint32_t getFieldSymbol(uint32_t field) { return static_cast<uint32_t>(field_name_table->numberAt(field)); }
const char *getFieldName(uint32_t field) { return getSymbolName(getFieldSymbol(field)); }

// ---- Start

static void internFixedNames() {
#define FIELD(name, text)                                       \
    [[maybe_unused]] uint32_t name = findFieldIndexByStr(text); \
    assert(name == FIELD_INDEX_##name);
#include "frontend/fields.def"
#undef FIELD
    SYMBOL_INDEX_APPLY = findSymbolIndex("join");
    SYMBOL_INDEX_APPROVE = findSymbolIndex("approve");
    SYMBOL_INDEX_VALIDATE = findSymbolIndex("validate");
    SYMBOL_INDEX_WITHDRAW = findSymbolIndex("withdraw");
    SYMBOL_INDEX_AUTO_REAPPLY = findSymbolIndex("auto_reapply");
    SYMBOL_INDEX_GET = findSymbolIndex("get");
    SYMBOL_INDEX_PUT = findSymbolIndex("put");
    SYMBOL_INDEX_STATES = findSymbolIndex("states");
    SYMBOL_INDEX_NPORTS = findSymbolIndex("nports");
}

void initNames() {
    symbol_table = newVector(128);
    field_name_table = newVector(128);
    nplaces = 1024;
    places = static_cast<uint32_t *>(i_malloc(nplaces * sizeof *places));
    std::memset(places, 0, nplaces * sizeof *places);
    findSymbolIndex("ans");
    internFixedNames();
}

}  // namespace vesko

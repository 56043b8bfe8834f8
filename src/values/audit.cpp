// The audit of links.
#include "values/audit.h"

#ifdef VESKO_CHECK
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "engine/interrupt.h"
#include "values/containers.h"
#include "values/pools.h"

// The pools keep their memory for the life of the process, and poisoned memory hides it from a search for
// leaks.
extern "C" const char *__asan_default_options();
extern "C" const char *__asan_default_options() { return "detect_leaks=0:handle_abort=1"; }

namespace vesko {

// ---- Who holds links

namespace {

struct Holder {
    const char *name;
    void (*walk)();
};

constexpr unsigned max_holders = 32;
Holder holders[max_holders];
unsigned n_holders;
void (*payload_walks[n_kinds])(const Matrix *);

const char *walked;     // the holder that is walked now
const Matrix *tracked;  // its holders are told; null while links are counted
bool extra_tolerated;
bool faulty;

// Shared records that were met in this audit: a table of addresses, open addressing.
struct Seen {
    const void **table;
    size_t cap, used;

    void clear() {
        if (table) std::memset(table, 0, cap * sizeof *table);
        used = 0;
    }
    const void **place(const void *p) {
        size_t k = reinterpret_cast<uintptr_t>(p) / 16 % cap;
        while (table[k] && table[k] != p) k = (k + 1) % cap;
        return table + k;
    }
    void grow() {
        const void **old = table;
        const size_t n = cap;
        cap = n ? 2 * n : 1024;
        table = static_cast<const void **>(std::calloc(cap, sizeof *table));
        for (size_t k = 0; k < n; k++)
            if (old[k]) *place(old[k]) = old[k];
        std::free(old);
    }
    bool add(const void *p) {
        if (2 * (used + 1) > cap) grow();
        const void **slot = place(p);
        if (*slot) return false;
        *slot = p;
        used++;
        return true;
    }
} seen;

const char *nameOf(const Matrix *m) {
    return m->l2type == L2::VL ? "variable length list" : getdatatypestr(m->l2type);
}

bool isSingleton(const Matrix *m) { return m->status >= status_singleton / 2; }

}  // namespace

void addHolderWalk(const char *name, void (*walk)()) {
    if (n_holders == max_holders) std::abort();
    holders[n_holders++] = {name, walk};
}

void setPayloadWalk(L2 kind, void (*walk)(const Matrix *)) { payload_walks[index(kind)] = walk; }

void tolerateExtraLinks() { extra_tolerated = true; }

bool auditFirst(const void *shared) { return seen.add(shared); }

// ---- Counting

void auditLink(const Matrix *held) {
    if (!held) return;
    if (isPoisoned(held)) {
        std::fprintf(stderr, "audit: %s holds a released record\n", walked);
        faulty = true;
        return;
    }
    if (held == tracked) std::fprintf(stderr, "audit:   held by %s\n", walked);
    if (!tracked) const_cast<Matrix *>(held)->audit_links++;
}

template <class F>
static void forEachLive(F f) {
    forEachPool([&](const PoolClass &pool) {
        forEachRecord(pool, [&](Matrix *m) {
            if (!isPoisoned(m) && m->status != status_free) f(m);
        });
    });
}

static void auditTable(const hashtable *t) {
    auditLink(t->dflt);
    for (uint32_t i = 0; i < t->count(); i++) {
        auditLink(t->node(i)->key);
        auditLink(t->node(i)->data);
    }
}

static void walkAll() {
    seen.clear();
    walked = "unfinished table";
    if (unfinished_table) auditTable(unfinished_table);
    for (unsigned k = 0; k < n_holders; k++) {
        walked = holders[k].name;
        holders[k].walk();
    }
    forEachLive([](const Matrix *m) {
        auto *walk = payload_walks[index(m->l2type)];
        walked = nameOf(m);
        if (walk && m->vdata) walk(m);
    });
}

// ---- Judging

static void tell(const Matrix *m) {
    std::fprintf(stderr, "audit: %s, %u by %u, made at depth %d, counts %u links, %u found\n", nameOf(m),
                 m->nrows, m->ncols, m->depth, m->nlinks(), m->audit_links);
    if (m->l2type == L2::TX) std::fprintf(stderr, "audit:   text '%.60s'\n", m->text());
    if (m->l2type == L2::RS) std::fprintf(stderr, "audit:   value %g\n", m->rdata[0]);
    tracked = m;
    walkAll();
    tracked = nullptr;
    faulty = true;
}

static void judge(const Matrix *m) {
    if (isSingleton(m)) return;
    const uint32_t links = m->nlinks();
    const bool dangling = m->audit_links > links;
    const bool lost = m->audit_links < links || m->isTemp();
    if (dangling || (lost && !extra_tolerated)) tell(m);
}

static void walkLinkedNodes(const xlistnode *n) {
    for (; n; n = n->next) auditLink(n->value);
}

static void walkEntries(const Matrix *m) {
    for (uint32_t i = 0; i < m->length; i++) auditLink(m->entries()[i]);
}

// Payloads that the values themselves know.
static void setOwnWalks() {
    for (L2 t : {L2::LS, L2::VL}) setPayloadWalk(t, walkEntries);
    for (L2 t : {L2::HASH, L2::FSET}) setPayloadWalk(t, [](const Matrix *m) { auditTable(m->table()); });
    for (L2 t : {L2::PTR, L2::PTRSET}) setPayloadWalk(t, [](const Matrix *m) { auditLink(m->target()); });
    for (L2 t : {L2::CS, L2::CM})
        setPayloadWalk(t, [](const Matrix *m) {
            auditLink(m->re());
            auditLink(m->im());
        });
    setPayloadWalk(L2::STACK, [](const Matrix *m) { walkLinkedNodes(static_cast<xstack *>(m->vdata)->top); });
    setPayloadWalk(L2::QUEUE, [](const Matrix *m) { auditQueue(static_cast<xqueue *>(m->vdata)); });
}

// Called when no temporary should be left. A fault ends the process.
void auditLinks() {
    holdInterrupt();  // an audit that is left half-way would leave its own tables so
    setOwnWalks();
    forEachLive([](Matrix *m) { m->audit_links = 0; });
    walkAll();
    forEachLive([](const Matrix *m) {
        if (!faulty) judge(m);
    });
    if (faulty) {
        std::fflush(stdout);
        std::_Exit(99);
    }
    freeInterrupt();
}

}  // namespace vesko
#endif

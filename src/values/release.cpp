// Release of values: one table tells for each kind what is freed with it and which pool takes the record.
#include "values/release.h"

#include <cassert>
#include <initializer_list>

#include "console/message.h"
#include "engine/interrupt.h"
#include "values/containers.h"
#include "values/memory.h"
#include "values/pools.h"

namespace vesko {

uint32_t release_nesting;

// ---- Payloads that the values themselves know

static void dropTarget(Matrix *m) { ucReleaseMat(m->target()); }

static void freeEntries(Matrix *m) {
    const uint32_t n = m->length;
    for (uint32_t i = 0; i < n; i++) ucReleaseMat(m->entries()[i]);
}

static void freeParts(Matrix *m) {
    ucReleaseMat(m->re());
    ucReleaseMat(m->im());
    recycleMemBlock(m->vdata, 2 * sizeof(Matrix *));
}

// Counts 8 bytes an element for the complex kind too, so that the counter of memory drifts upward: accepted.
static void freeMultidim(Matrix *m) {
    const size_t doubles = size_t{m->length} * (m->l2type == L2::CMDM ? 2 : 1);
    m_free(m->rdata, doubles * sizeof(double));
    freeVector(static_cast<Vector *>(m->vdata), nullptr);
}

static void dropAddress(Matrix *m) {
    VarAddr *address = static_cast<VarAddr *>(m->vdata);
    *address->cell -= 2;
    recycleBlock(address);
}

// ---- The table

namespace {

enum class Home : uint8_t { Real, General, Plain, Nowhere };

struct ReleaseRule {
    Home home = Home::Plain;
    PayloadFreeFn payload = nullptr;
};

struct ReleaseTable {
    ReleaseRule rules[n_kinds];

    constexpr ReleaseRule &operator[](L2 t) { return rules[index(t)]; }
    constexpr ReleaseTable() : rules{} {
        ReleaseTable &t = *this;
        for (L2 k : {L2::RM, L2::RS, L2::UPPER, L2::LOWER, L2::SYMM, L2::PM}) t[k].home = Home::Real;
        for (L2 k : {L2::IM, L2::RNG, L2::IS, L2::BY, L2::BI, L2::TX, L2::ITV, L2::BIGINT, L2::MPF})
            t[k].home = Home::General;
        for (L2 k : {L2::LS, L2::VL}) t[k] = {Home::General, freeEntries};
        for (L2 k : {L2::RNG0, L2::NUL, L2::COMPLETE, L2::DNE}) t[k].home = Home::Nowhere;
        for (L2 k : {L2::CS, L2::CM}) t[k].payload = freeParts;
        for (L2 k : {L2::RMDM, L2::CMDM}) t[k].payload = freeMultidim;
        for (L2 k : {L2::PTR, L2::PTRSET}) t[k].payload = dropTarget;
        for (L2 k : {L2::HASH, L2::FSET}) t[k].payload = [](Matrix *m) { freeHashTable(m->table()); };
        t[L2::STACK].payload = [](Matrix *m) { freeStack(static_cast<xstack *>(m->vdata)); };
        t[L2::QUEUE].payload = [](Matrix *m) { freeQueue(static_cast<xqueue *>(m->vdata)); };
        t[L2::VARADDR].payload = dropAddress;
    }
};

constinit ReleaseTable release_table;

// A value nested deeper than this waits for the sweep, so that releasing needs little of the machine stack.
constexpr uint32_t max_release_nesting = 1000;

}  // namespace

void setPayloadFree(L2 kind, PayloadFreeFn free_payload) {
    assert(release_table[kind].home != Home::Nowhere);
    release_table[kind].payload = free_payload;
}

// ---- Giving records back

// A free record keeps the tags of its class and nothing that a second release could free: an interrupt may
// catch it just after it was handed out, before its maker has tagged it.
static void giveReal(Matrix *m) {
    PoolClass &pool = real_pool[m->libidx];
    if (m->libidx == 0) {
        m->l1type = L1::RS;
        m->l2type = L2::RS;
        m->nrows = m->ncols = m->length = 1;
    } else {
        m->l1type = L1::RM;
        m->l2type = L2::RM;
    }
    m->vdata = nullptr;
    giveRecord(pool, m);
}

static void giveGeneral(Matrix *m) {
    m->l1type = L1::PF;
    m->l2type = L2::BY;
    giveRecord(general_pool[m->libidx], m);
}

static void givePlain(Matrix *m) {
    m->l2type = L2::GV;
    m->vdata = nullptr;
    giveRecord(plain_pool, m);
}

static void giveBack(Home home, Matrix *m) {
    switch (home) {
        case Home::Real: return giveReal(m);
        case Home::General: return giveGeneral(m);
        case Home::Plain: return givePlain(m);
        case Home::Nowhere: m->status = status_singleton;
    }
}

static void disposeWithPayload(Matrix *m, const ReleaseRule &rule) {
    if (release_nesting >= max_release_nesting) {
        m->status = status_temporary;
        noteForSweep(m);
        return;
    }
    holdInterrupt();
    release_nesting++;
    m->status = status_free;
    rule.payload(m);
    release_nesting--;
    giveBack(rule.home, m);
    freeInterrupt();
}

void disposeMat(Matrix *m) {
    assert(m->nlinks() == 0);
    if (m->l2type == L2::RS && m->libidx == 0) return giveRecord(real_pool[0], m);
    if (index(m->l2type) >= n_kinds) return;
    const ReleaseRule &rule = release_table[m->l2type];
    if (rule.payload && m->vdata)
        disposeWithPayload(m, rule);
    else
        giveBack(rule.home, m);
}

// ---- Links

static void reportUnlinked(Matrix *m) {
    if (m->l2type == L2::NUL)
        m->status = status_singleton;
    else
        xMesg("Error: ucrelease non-linked mat, l2type=%u, ", index(m->l2type));
}

void dropLastLink(Matrix *m) {
    if (m->status <= status_temporary) return reportUnlinked(m);
    m->status -= 2;
    if (m->l2type == L2::RS && m->libidx == 0) return giveRecord(real_pool[0], m);
    disposeMat(m);
}

}  // namespace vesko

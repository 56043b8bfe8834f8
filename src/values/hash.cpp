// Hash tables and sets: 67 chains, and a vector of the nodes in order of insertion. The chains stay as they
// are, since they tell which keys can be removed; keys of larger tables are found through an index that
// grows.
#include <bit>
#include <cassert>
#include <cstring>

#include "builtins/bfunc.h"
#include "engine/interrupt.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"
#include "values/containers.h"
#include "values/matrix.h"
#include "values/memory.h"

namespace vesko {

constexpr uint32_t n_buckets = 67;
constexpr uint32_t least_nodes = 8;

// ---- Hash codes: a polynomial with multiplier 31, modulo 2^32.

static uint32_t step(uint32_t h, uint32_t e) { return h * 31 + e; }

// A double counts as the lower half of its integer part; what no 64-bit integer can hold counts 0.
static uint32_t hashElement(double x) {
    constexpr double limit = 0x1p63;
    return x >= -limit && x < limit ? static_cast<uint32_t>(static_cast<int64_t>(x)) : 0;
}
static uint32_t hashElement(int32_t x) { return static_cast<uint32_t>(x); }
static uint32_t hashElement(uint8_t x) { return x; }
static uint32_t hashElement(char x) { return static_cast<uint32_t>(static_cast<signed char>(x)); }
static uint32_t hashElement(const Matrix *m) { return getMatHashCode(m); }

template <class T>
static uint32_t hashRun(uint32_t h, const T *data, uint32_t n) {
    for (uint32_t i = 0; i < n; i++) h = step(h, hashElement(data[i]));
    return h;
}

template <class T>
static uint32_t hashMatrix(const Matrix *m, const T *data) {
    return step(step(hashRun(0, data, m->length), m->nrows), m->ncols);
}

// Over the bytes: so 1.0 and the integer 1 have different codes, and are two keys. The terms of the
// polynomial do not wait for each other.
static uint32_t hashReal(double x) {
    constexpr uint32_t nan_code = 7815;
    if (x != x) return nan_code;
    const auto bits = std::bit_cast<uint64_t>(x);
    uint32_t h = 0, power = 1;
    for (int shift = 56; shift >= 0; shift -= 8, power *= 31)
        h += static_cast<uint8_t>(bits >> shift) * power;
    return h;
}

static uint32_t hashName(const char *name) {
    constexpr uint32_t builtin_seed = 97372;
    return hashRun(builtin_seed, name, static_cast<uint32_t>(std::strlen(name)));
}

static uint32_t hashList(const Matrix *m) {
    guardStack();
    return step(hashRun(0, m->entries(), m->length), m->length);
}

uint32_t getMatHashCode(const Matrix *m) {
    if (m->l2type == L2::RS) return hashReal(m->rdata[0]);
    switch (m->l2type) {
        case L2::IM:
        case L2::IS: return hashMatrix(m, m->ints());
        case L2::RM:
        case L2::RMDM: return hashMatrix(m, m->rdata);
        case L2::BY:
        case L2::BI: return hashMatrix(m, m->bytes());
        case L2::CS:
        case L2::CM: return step(getMatHashCode(m->re()), getMatHashCode(m->im()));
        case L2::CMDM: return step(hashMatrix(m, m->rdata), hashMatrix(m, m->rdata + m->length));
        case L2::LS: return hashList(m);
        case L2::BF: return hashName(getSymbolName(m->builtin()->name));
        case L2::TX: return hashRun(0, m->text(), m->length);
        default: return index(m->l2type);
    }
}

// ---- Nodes

static hashnode *newHashNode(uint32_t place, uint32_t code, Matrix *key, Matrix *data) {
    hashnode *n = newBlock<hashnode>();
    *n = {place, code, key, data, nullptr, nullptr};
    linkMat(key);
    linkMat(data);
    return n;
}

static void freeHashNode(void *node) {
    hashnode *n = static_cast<hashnode *>(node);
    Matrix *key = n->key, *data = n->data;
    recycleBlock(n);
    ucReleaseMat(key);
    ucReleaseMat(data);
}

// ---- The index

constexpr uint32_t keys_without_index = 2 * n_buckets;

using Chain = hashnode *;

static Chain &bucketOf(const hashtable *t, uint32_t code) {
    return reinterpret_cast<Chain &>(t->buckets->data[code % n_buckets]);
}

// The chain of the index by the high bits of a product, on which all bits of the code have a bearing.
static Chain &indexChain(const Vector *index, uint32_t code) {
    constexpr uint32_t golden = 0x9e3779b1;
    const uint32_t k = (code * golden) >> (32 - std::countr_zero(index->size));
    return reinterpret_cast<Chain &>(index->data[k]);
}

static Vector *newHeads(uint32_t n) {
    Vector *heads = newVector(n);
    heads->size = n;
    std::memset(heads->data, 0, n * sizeof(void *));
    return heads;
}

static void enterIndex(Vector *index, hashnode *n) {
    Chain &chain = indexChain(index, n->code);
    n->next_near = chain;
    chain = n;
}

static void leaveIndex(Vector *index, const hashnode *n) {
    Chain *at = &indexChain(index, n->code);
    while (*at != n) at = &(*at)->next_near;
    *at = n->next_near;
}

static bool needsIndex(const hashtable *t) {
    return t->count() >= (t->index ? t->index->size : keys_without_index);
}

// So that one more node finds chains of one node in the mean.
static void growIndex(hashtable *t) {
    Vector *index = newHeads(std::bit_ceil(2 * t->count()));
    for (uint32_t i = 0; i < t->count(); i++) enterIndex(index, t->node(i));
    freeVector(t->index, nullptr);
    t->index = index;
}

static hashnode *findNode(const hashtable *t, uint32_t code, const Matrix *key) {
    const bool indexed = t->index;
    hashnode *n = indexed ? indexChain(t->index, code) : bucketOf(t, code);
    while (n && (n->code != code || !are_equal(n->key, key))) n = indexed ? n->next_near : n->next;
    return n;
}

// A new node, in front of its chain.
static hashnode *addNode(hashtable *t, uint32_t code, Matrix *key, Matrix *data) {
    holdInterrupt();
    reserveElement(t->nodes);
    if (needsIndex(t)) growIndex(t);
    hashnode *n = newHashNode(t->count(), code, key, data);
    Chain &bucket = bucketOf(t, code);
    n->next = bucket;
    bucket = n;
    if (t->index) enterIndex(t->index, n);
    addElement(t->nodes, n);
    freeInterrupt();
    return n;
}

// ---- Tables

hashtable *newHashTable(uint32_t n) {
    holdInterrupt();
    hashtable *t = newBlock<hashtable>();
    t->buckets = newHeads(n_buckets);
    t->nodes = newVector(n < least_nodes ? least_nodes : n);
    t->dflt = theEmptyMat();
    t->index = nullptr;
    linkMat(t->dflt);
    freeInterrupt();
    return t;
}

void freeHashTable(hashtable *t) {
    holdInterrupt();
    freeVector(t->nodes, freeHashNode);
    ucReleaseMat(t->dflt);
    freeVector(t->buckets, nullptr);
    freeVector(t->index, nullptr);
    recycleBlock(t);
    freeInterrupt();
}

hashtable *unfinished_table;

static hashtable *beginTable(uint32_t n) {
    if (hashtable *broken_off = unfinished_table) {
        unfinished_table = nullptr;
        freeHashTable(broken_off);
    }
    return unfinished_table = newHashTable(n);
}

static hashtable *finishTable() {
    hashtable *t = unfinished_table;
    unfinished_table = nullptr;
    return t;
}

hashtable *copyHashTable(const hashtable *t) {
    hashtable *copy = beginTable(t->count());
    for (uint32_t i = 0; i < t->count(); i++) {
        const hashnode *n = t->node(i);
        addNode(copy, n->code, n->key, n->data);
    }
    return finishTable();
}

void addHashData(hashtable *t, Matrix *key, Matrix *value) {
    const uint32_t code = getMatHashCode(key);
    if (hashnode *n = findNode(t, code, key))
        replaceMat(n->data, value);
    else
        addNode(t, code, key, value);
}

// The last node of the node vector takes the place of the one that goes.
static void unlinkFirst(hashtable *t, Chain &bucket) {
    holdInterrupt();
    hashnode *n = bucket;
    bucket = n->next;
    if (t->index) leaveIndex(t->index, n);
    hashnode *last = t->node(t->count() - 1);
    last->index = n->index;
    removeElementAt(t->nodes, n->index);
    freeHashNode(n);
    freeInterrupt();
}

// Only a key that stands first in its chain goes; one that stands deeper is passed over and stays. Programs
// see that, and rely on it.
bool removeHashKey(hashtable *t, Matrix *key) {
    Chain &bucket = bucketOf(t, getMatHashCode(key));
    if (!bucket || !are_equal(bucket->key, key)) return false;
    unlinkFirst(t, bucket);
    return true;
}

hashnode *findHashNode(const hashtable *t, const Matrix *key) {
    return findNode(t, getMatHashCode(key), key);
}

Matrix *findHashData(const hashtable *t, const Matrix *key) {
    const hashnode *n = findHashNode(t, key);
    return n ? n->data : t->dflt;
}

Matrix **findHashDataAddr(hashtable *t, Matrix *key) {
    const uint32_t code = getMatHashCode(key);
    hashnode *n = findNode(t, code, key);
    if (!n) n = addNode(t, code, key, theEmptyMat());
    return &n->data;
}

Matrix **findDfltHashDataAddr(hashtable *t) { return &t->dflt; }

void setDfltHashVal(hashtable *t, Matrix *value) { replaceMat(t->dflt, value); }

Matrix *getDfltHashVal(const hashtable *t) { return t->dflt; }

// ---- Sets

xset *newXSet() { return newHashTable(1); }

bool is_empty_set(const xset *s) { return s->count() == 0; }

Matrix *setMemberAt(const xset *s, uint32_t i) { return s->node(i)->key; }

Matrix *findSetMember(const xset *s, const Matrix *m) {
    const hashnode *n = findHashNode(s, m);
    return n ? n->key : nullptr;
}

Matrix *findSetMemberShip(const xset *s, const Matrix *m) { return truthMat(findSetMember(s, m)); }

void addSetMember(xset *s, Matrix *m) {
    const uint32_t code = getMatHashCode(m);
    if (!findNode(s, code, m)) addNode(s, code, m, theTrueMat());
}

void qAddSetMember(xset *s, Matrix *m) { addNode(s, getMatHashCode(m), m, theTrueMat()); }

bool removeSetMember(xset *s, Matrix *m) { return removeHashKey(s, m); }

template <class F>
static void forEachMember(const xset *s, F f) {
    for (uint32_t i = 0; i < s->count(); i++) f(setMemberAt(s, i));
}

xset *makeSetUnion(const xset *a, const xset *b) {
    xset *s = beginTable(1);
    forEachMember(a, [s](Matrix *m) { qAddSetMember(s, m); });
    forEachMember(b, [s](Matrix *m) { addSetMember(s, m); });
    return finishTable();
}

xset *makeSetIntersection(const xset *a, const xset *b) {
    xset *s = beginTable(1);
    forEachMember(a, [s, b](Matrix *m) {
        if (Matrix *found = findSetMember(b, m)) qAddSetMember(s, found);
    });
    return finishTable();
}

xset *makeSetDiff(const xset *a, const xset *b) {
    xset *s = beginTable(1);
    forEachMember(a, [s, b](Matrix *m) {
        if (!findSetMember(b, m)) qAddSetMember(s, m);
    });
    return finishTable();
}

static bool isWithin(const xset *a, const xset *b) {
    for (uint32_t i = 0; i < a->count(); i++)
        if (!findSetMember(b, setMemberAt(a, i))) return false;
    return true;
}

bool set_equal(const xset *a, const xset *b) { return a->count() == b->count() && isWithin(a, b); }

bool sub_set(const xset *a, const xset *b) { return a->count() <= b->count() && isWithin(a, b); }

bool true_sub_set(const xset *a, const xset *b) { return a->count() < b->count() && isWithin(a, b); }

bool set_in_interval(const xset *s, const Matrix *itv) {
    for (uint32_t i = 0; i < s->count(); i++)
        if (!memberOfSet(setMemberAt(s, i), const_cast<Matrix *>(itv), nullptr)) return false;
    return true;
}

}  // namespace vesko

// Growable vectors, hash tables and sets, struct fields, stacks and queues. All store Matrix pointers with
// links, or plain words, and all reuse their records.
#pragma once

#include <cstdint>

namespace vesko {

struct Matrix;

// ---- Vector: a growable array of words. Index vectors keep numbers in the words.
struct Vector {
    uint32_t size;      // entries in use
    uint32_t libclass;  // capacity class
    uint32_t cap;       // capacity in entries
    void **data;
    Vector *next;  // link in the free list of the class

    template <class T>
    T *at(uint32_t i) const {
        return static_cast<T *>(data[i]);
    }
    uintptr_t numberAt(uint32_t i) const { return reinterpret_cast<uintptr_t>(data[i]); }
    Matrix *matAt(uint32_t i) const { return static_cast<Matrix *>(data[i]); }
};

inline void *asEntry(uintptr_t number) { return reinterpret_cast<void *>(number); }

void initVecLib();
Vector *newVector(uint32_t n);
inline void *elementAt(const Vector *v, uint32_t i) { return v->data[i]; }
uint32_t addElement(Vector *v, void *e);      // index of the entry
void reserveElement(Vector *v);               // so that the next addElement cannot fail
void removeElementAt(Vector *v, uint32_t i);  // the last entry takes the place
bool removeElement(Vector *v, void *e);
void removeElement_order_preserved(Vector *v, uint32_t i);
void *getTail(const Vector *v);
void vector_swap(Vector *v, uint32_t i, uint32_t j);
void extendVectorBuffer(Vector *v, uint32_t n, uint32_t used);
using FreeEntryFn = void (*)(void *);
void freeVector(Vector *v, FreeEntryFn f);  // null-safe; f, when given, is called on each entry
void emptyVector(Vector *v, FreeEntryFn f);
void releaseEntry(void *mat);                      // ucReleaseMat for use as FreeEntryFn
uint32_t appendMatVecEntry(Vector *v, Matrix *m);  // links m
void updateMatVecEntry(Vector *v, uint32_t i, Matrix *m);
void copyMatVec(Vector *dst, const Vector *src);
Matrix *makeBiMatVec(Matrix *a, Matrix *b);  // VL of the values, each linked
Matrix *makeTriMatVec(Matrix *a, Matrix *b, Matrix *c);
Matrix *makeQuadMatVec(Matrix *a, Matrix *b, Matrix *c, Matrix *d);
void print_vector_list_sizes();

// ---- Hash tables. 67 buckets, a node vector in order of insertion, a default value; a table of many keys
// has an index too, in which they are found.
struct hashnode {
    uint32_t index;  // place in the node vector
    uint32_t code;
    Matrix *key;
    Matrix *data;
    hashnode *next;       // in the bucket
    hashnode *next_near;  // in the index
};
struct hashtable {
    Vector *buckets;
    Vector *nodes;
    Matrix *dflt;
    Vector *index;  // heads of chains, their number a power of two; null in a small table

    uint32_t count() const { return nodes->size; }
    hashnode *node(uint32_t i) const { return nodes->at<hashnode>(i); }
};
using xset = hashtable;  // a set is a table whose data are all theTrueMat

hashtable *newHashTable(uint32_t n);
void freeHashTable(hashtable *t);
// The table that is being filled from others and has no owner yet. One whose filling was broken off goes when
// the next is begun.
extern hashtable *unfinished_table;
hashtable *copyHashTable(const hashtable *t);  // shares keys and values by link; the default is not copied
void addHashData(hashtable *t, Matrix *key, Matrix *value);
bool removeHashKey(hashtable *t, Matrix *key);  // removes only a key that stands first in its chain
Matrix *findHashData(const hashtable *t, const Matrix *key);    // borrowed: data or the default
hashnode *findHashNode(const hashtable *t, const Matrix *key);  // null if absent
Matrix **findHashDataAddr(hashtable *t, Matrix *key);           // adds the key with the empty value if absent
Matrix **findDfltHashDataAddr(hashtable *t);
void setDfltHashVal(hashtable *t, Matrix *value);
Matrix *getDfltHashVal(const hashtable *t);
uint32_t getMatHashCode(const Matrix *m);

xset *newXSet();
bool is_empty_set(const xset *s);
Matrix *setMemberAt(const xset *s, uint32_t i);  // from 0, in the order of the node vector
void addSetMember(xset *s, Matrix *m);
bool removeSetMember(xset *s, Matrix *m);
void qAddSetMember(xset *s, Matrix *m);  // without the search
xset *makeSetUnion(const xset *a, const xset *b);
xset *makeSetIntersection(const xset *a, const xset *b);
xset *makeSetDiff(const xset *a, const xset *b);
bool set_equal(const xset *a, const xset *b);
bool sub_set(const xset *a, const xset *b);
bool true_sub_set(const xset *a, const xset *b);
bool set_in_interval(const xset *s, const Matrix *itv);
Matrix *findSetMemberShip(const xset *s, const Matrix *m);  // theTrueMat or theFalseMat
Matrix *findSetMember(const xset *s, const Matrix *m);      // the set's own record, or null

// ---- Lists.
void addListEntry(Matrix *list, Matrix *m);  // links m; the list must have room

// ---- Struct fields: also the parameters of functions.
enum class Access : uint8_t { Public, Readonly, Common, Auto, Private };  // attribute of a field
struct sfield {
    uint8_t flag;    // Access
    uint32_t index;  // field index
    Matrix *domain;  // linked
    Matrix *value;   // linked
};
sfield *newSfield(uint32_t index, Matrix *value, Matrix *domain);
void freeSfield(void *field);
void addStructField(Vector *fields, uint32_t index, Matrix *value, Matrix *domain);
void updStructField(Vector *fields, uint32_t index, Matrix *value);
uint32_t countFields(const Vector *fields);
void auditFields(const Vector *fields);  // for the audit of links; null-safe

// ---- Stacks and queues.
struct xlistnode {
    Matrix *value;  // linked
    xlistnode *next;
};
struct xstack {
    xlistnode *top;
    uint32_t count;
};
struct xqueue {
    xlistnode *first;
    xlistnode *last;
    uint32_t count;    // values waiting
    uint32_t traffic;  // goes up by one at every put and every take
    bool shared;       // two ports of automatons hold it
};
xstack *newXstack();
Matrix *pushStack(xstack *s, Matrix *m);  // theTrueMat
Matrix *popStack(xstack *s);              // detached; theEmptyMat when there is none
xstack *copyStack(const xstack *s);
void freeStack(xstack *s);
xqueue *newQueue();
Matrix *queInput(xqueue *q, Matrix *m);
Matrix *queOutput(xqueue *q);
xqueue *copyQue(const xqueue *q);
void freeQueue(xqueue *q);         // the first of two ports that share it only leaves it to the other
void auditQueue(const xqueue *q);  // for the audit of links

}  // namespace vesko

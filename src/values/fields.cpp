// Struct fields, and the linked records of stacks and queues.
#include <cassert>

#include "engine/interrupt.h"
#include "values/audit.h"
#include "values/containers.h"
#include "values/matrix.h"
#include "values/memory.h"

namespace vesko {

// ---- Struct fields

sfield *newSfield(uint32_t index, Matrix *value, Matrix *domain) {
    sfield *f = newBlock<sfield>();
    *f = {0, index, domain, value};
    linkMat(domain);
    linkMat(value);
    return f;
}

void freeSfield(void *field) {
    sfield *f = static_cast<sfield *>(field);
    holdInterrupt();
    ucReleaseMat(f->domain);
    ucReleaseMat(f->value);
    recycleBlock(f);
    freeInterrupt();
}

void addStructField(Vector *fields, uint32_t index, Matrix *value, Matrix *domain) {
    reserveElement(fields);
    addElement(fields, newSfield(index, value, domain));
}

void updStructField(Vector *fields, uint32_t index, Matrix *value) {
    for (uint32_t i = 0; i < fields->size; i++) {
        sfield *f = fields->at<sfield>(i);
        if (f->index == index) replaceMat(f->value, value);
    }
}

uint32_t countFields(const Vector *fields) { return fields ? fields->size : 0; }

void auditFields(const Vector *fields) {
    for (uint32_t i = 0; i < countFields(fields); i++) {
        auditLink(fields->at<sfield>(i)->domain);
        auditLink(fields->at<sfield>(i)->value);
    }
}

// ---- List nodes

static xlistnode *newXlistNode(Matrix *value, xlistnode *next) {
    xlistnode *n = newBlock<xlistnode>();
    *n = {value, next};
    linkMat(value);
    return n;
}

static void recycleXlistNode(xlistnode *n) { recycleBlock(n); }

// Takes the node off; its value is detached.
static Matrix *takeValue(xlistnode *&place) {
    xlistnode *n = place;
    Matrix *m = n->value;
    place = n->next;
    recycleXlistNode(n);
    return detachMat(m);
}

static void freeNodes(xlistnode *n) {
    while (n) {
        xlistnode *next = n->next;
        ucReleaseMat(n->value);
        recycleXlistNode(n);
        n = next;
    }
}

// ---- Stacks

xstack *newXstack() {
    xstack *s = newBlock<xstack>();
    *s = {nullptr, 0};
    return s;
}

Matrix *pushStack(xstack *s, Matrix *m) {
    holdInterrupt();
    s->top = newXlistNode(m, s->top);
    s->count++;
    freeInterrupt();
    return theTrueMat();
}

Matrix *popStack(xstack *s) {
    if (!s->top) return theEmptyMat();
    holdInterrupt();
    s->count--;
    Matrix *m = takeValue(s->top);
    freeInterrupt();
    return m;
}

xstack *copyStack(const xstack *s) {
    holdInterrupt();
    xstack *copy = newXstack();
    xlistnode **tail = &copy->top;
    for (const xlistnode *n = s->top; n; n = n->next) {
        *tail = newXlistNode(n->value, nullptr);
        tail = &(*tail)->next;
    }
    copy->count = s->count;
    freeInterrupt();
    return copy;
}

void freeStack(xstack *s) {
    holdInterrupt();
    freeNodes(s->top);
    recycleBlock(s);
    freeInterrupt();
}

// ---- Queues

xqueue *newQueue() {
    xqueue *q = newBlock<xqueue>();
    *q = {};
    return q;
}

Matrix *queInput(xqueue *q, Matrix *m) {
    holdInterrupt();
    xlistnode *n = newXlistNode(m, nullptr);
    (q->last ? q->last->next : q->first) = n;
    q->last = n;
    q->count++;
    q->traffic++;
    freeInterrupt();
    return theTrueMat();
}

Matrix *queOutput(xqueue *q) {
    if (!q->first) return theEmptyMat();
    holdInterrupt();
    Matrix *m = takeValue(q->first);
    if (!q->first) q->last = nullptr;
    q->count--;
    q->traffic++;
    freeInterrupt();
    return m;
}

xqueue *copyQue(const xqueue *q) {
    holdInterrupt();
    xqueue *copy = newQueue();
    for (const xlistnode *n = q->first; n; n = n->next) queInput(copy, n->value);
    copy->traffic = q->traffic;
    freeInterrupt();
    return copy;
}

void freeQueue(xqueue *q) {
    if (q->shared) {
        q->shared = false;
        return;
    }
    holdInterrupt();
    freeNodes(q->first);
    recycleBlock(q);
    freeInterrupt();
}

void auditQueue(const xqueue *q) {
    for (const xlistnode *n = q->first; n; n = n->next) auditLink(n->value);
}

}  // namespace vesko

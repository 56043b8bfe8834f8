// Nodes: the stock of free ones, the libraries that own those in use, and their child arrays.
#include "engine/node.h"

#include <bit>
#include <cassert>
#include <cstring>

#include "console/message.h"
#include "engine/interrupt.h"
#include "frontend/source.h"
#include "frontend/symbols.h"
#include "values/audit.h"
#include "values/matrix.h"
#include "values/memory.h"

namespace vesko {

static PcNode *freepclibhead;
static uint32_t pcnodescount;

// Nodes are carved from slabs; a record never goes back to the heap.
static void growPcLib() {
    constexpr uint32_t slab = 128;
    PcNode *nodes = mallocArray<PcNode>(slab);
    for (uint32_t k = slab; k-- > 0;) {
        nodes[k].libnext = freepclibhead;
        freepclibhead = &nodes[k];
    }
    pcnodescount += slab;
}

// Child arrays have room for a power of two, so that addPcCub sees from ncub alone when one is full.
static PcNode **newCubArray(uint32_t ncub) {
    if (ncub == 0) return nullptr;
    size_t size = std::bit_ceil(ncub) * sizeof(PcNode *);
    return static_cast<PcNode **>(newScopeMem(size));
}

// A node of the given library, with the place in the source and its file.
static PcNode *takePcNode(PcNode *&library, NodeKind kind, int32_t value, uint32_t line) {
    if (!freepclibhead) growPcLib();
    holdInterrupt();
    PcNode *node = freepclibhead;
    freepclibhead = node->libnext;
    node->kind = kind;
    node->value = value;
    node->ncub = 0;
    node->line = line;
    node->file = filelist->name;
    linkMat(node->file);
    node->exec = pcOprn[index(kind)];
    node->cub = nullptr;
    node->next = nullptr;
    node->libnext = library;
    library = node;
    freeInterrupt();
    return node;
}

PcNode *newPcNode(NodeKind kind, int32_t value, uint32_t ncub, uint32_t line) {
    PcNode **cub = newCubArray(ncub);
    PcNode *node = takePcNode(ctscope->pclib, kind, value, line);
    node->cub = cub;
    node->ncub = ncub;
    return node;
}

void setPcNode(PcNode *node, NodeKind kind, int32_t value, uint32_t ncub) {
    node->cub = newCubArray(ncub);
    node->ncub = ncub;
    node->kind = kind;
    node->value = value;
    node->exec = pcOprn[index(kind)];
    node->next = nullptr;
}

PcNode *newMatPcNode(Matrix *constant, uint32_t line) {
    linkMat(constant);
    if (constant->status < 2) xMesg("bug ... nlinks of mat is zero");
    PcNode *node = takePcNode(ctscope->smpclib, NodeKind::Constant, no_value, line);
    node->constant = constant;
    return node;
}

void setPcCub(PcNode *node, uint32_t k, PcNode *child) {
    assert(k < node->ncub);
    node->cub[k] = child;
}

void addPcCub(PcNode *node, PcNode *child) {
    uint32_t n = node->ncub;
    if (n == 0 || std::has_single_bit(n)) {
        PcNode **cub = newCubArray(n + 1);
        if (n != 0) std::memcpy(cub, node->cub, n * sizeof(PcNode *));
        node->cub = cub;
    }
    node->cub[n] = child;
    node->ncub = n + 1;
}

// A constant can be the last holder of a function, whose own nodes come back meanwhile: so the chain is
// walked from a local, and a node is free only when it has nothing left to drop.
void recyclePcLib(PcNode *chain) {
    while (chain) {
        PcNode *node = chain;
        chain = node->libnext;
        if (node->isConstant() && node->constant) ucReleaseMat(node->constant);
        ucReleaseMat(node->file);
        node->libnext = freepclibhead;
        freepclibhead = node;
    }
}

void auditNodes(const PcNode *chain) {
    for (const PcNode *node = chain; node; node = node->libnext) {
        auditLink(node->file);
        if (node->isConstant()) auditLink(node->constant);
    }
}

void recycleSMPcLib(PcNode *chain) { recyclePcLib(chain); }

uint32_t getPcNodesCount() { return pcnodescount; }

}  // namespace vesko

// Instruction records: the pool, children, and the grouping of simple statements.
#include "frontend/inst.h"

#include <bit>
#include <cstring>

#include "frontend/arena.h"
#include "frontend/pool.h"

namespace vesko {

static ParsePool<InstNode> inst_pool;
static Arena inst_arena;

void recycleInstLib() {
    inst_pool.recycleAll();
    inst_arena.recycleAll();
}

// Arrays have room for a power of two, and at least four, so that ncub alone tells when one is full.
constexpr uint32_t least_room = 4;

static InstNode **newCubArray(uint32_t ncub) {
    uint32_t room = ncub <= least_room ? least_room : std::bit_ceil(ncub);
    return static_cast<InstNode **>(inst_arena.take(room * sizeof(InstNode *)));
}

InstNode *newInstNode(InstId id, Token *token, uint32_t ncub) {
    InstNode *inst = inst_pool.take();
    inst->id = id;
    inst->ncub = ncub;
    inst->token = token;
    inst->cub = nullptr;
    inst->next = nullptr;
    if (ncub) inst->cub = newCubArray(ncub);
    return inst;
}

void setInstID(InstNode *inst, InstId id) { inst->id = id; }
void setInstCub(InstNode *inst, uint32_t k, InstNode *child) { inst->cub[k] = child; }

void addInstCub(InstNode *inst, InstNode *child) {
    uint32_t n = inst->ncub;
    if (n == 0 || (n >= least_room && std::has_single_bit(n))) {
        InstNode **cub = newCubArray(n + 1);
        if (n) std::memcpy(cub, inst->cub, n * sizeof *cub);
        inst->cub = cub;
    }
    inst->cub[n] = child;
    inst->ncub = n + 1;
}

uint32_t instLine(const InstNode *inst) {
    if (!inst->token) return 0;
    bool simple =
        inst->id == InstId::Simple || inst->id == InstId::TailWhile || inst->id == InstId::TailUntil;
    return simple && inst->token->next ? inst->token->next->line : inst->token->line;
}

// ---- Grouping

static bool isSimpleClass(const InstNode *inst) { return inst && inst->id >= InstId::Simple; }

// One instruction for the run that begins with `first`; `rest` is what follows it.
static InstNode *groupRun(InstNode *first, InstNode *&rest) {
    uint32_t count = 0;
    for (rest = first; isSimpleClass(rest); rest = rest->next) ++count;
    InstNode *group = newInstNode(InstId::Group, first->token, count);
    for (InstNode *inst = first, **cub = group->cub; inst != rest; inst = inst->next) *cub++ = inst;
    return group;
}

InstNode *transformInstructList(InstNode *list) {
    InstNode *first = nullptr, **end = &first;
    while (list) {
        if (isSimpleClass(list)) {
            *end = groupRun(list, list);
        } else {
            *end = list;
            list = list->next;
        }
        end = &(*end)->next;
    }
    *end = nullptr;
    return first;
}

}  // namespace vesko

// Patterns and the library that compiles and searches them.
//
// A search holds no interrupt: it changes nothing that outlives it, and where it asks for memory the
// interrupt waits. Its cost is limited, in steps and in depth, for a pattern can make it exponential.
#include "builtins/regexp_search.h"

#include <pcre.h>

#include <cassert>
#include <cstdlib>

#include "builtins/regexp_match.h"
#include "engine/interrupt.h"
#include "values/memory.h"
#include "values/payload.h"

namespace vesko {

struct CompiledPattern {
    pcre *code;
    pcre_extra *extra;
    uint32_t groups;
    size_t searched;  // bytes of text so far, until the pattern is made machine code
    bool machine_code_tried;
};

namespace {

constexpr size_t machine_code_pays = 8 * 1024;  // bytes to search that outweigh making machine code
constexpr unsigned long max_steps = 2'000'000, max_machine_code_steps = 10'000'000;
constexpr int first_machine_code_stack = 32 * 1024, max_machine_code_stack = 32 * 1024 * 1024;
constexpr long max_frame = 1024;  // bytes of the machine stack that one level of a search takes

pcre_jit_stack *machine_code_stack;

// ---- Memory for the library

void *takeHeld(size_t size) {
    holdInterrupt();
    void *p = std::malloc(size);
    freeInterrupt();
    return p;
}

void freeHeld(void *p) {
    holdInterrupt();
    std::free(p);
    freeInterrupt();
}

// ---- Patterns

void study(CompiledPattern *p, int how, unsigned long steps) {
    const char *message;
    p->extra = pcre_study(p->code, how | PCRE_STUDY_EXTRA_NEEDED, &message);
    if (!p->extra) return;
    p->extra->flags |= PCRE_EXTRA_MATCH_LIMIT | PCRE_EXTRA_MATCH_LIMIT_RECURSION;
    p->extra->match_limit = steps;
}

void freeCode(CompiledPattern *p) {
    if (p->extra) pcre_free_study(p->extra);
    if (p->code) pcre_free(p->code);
    recycleBlock(p);
}

CompiledPattern *compile(const char *text, int options) {
    CompiledPattern *p = newBlock<CompiledPattern>();
    *p = {};
    const char *message;
    int place, groups;
    p->code = pcre_compile(text, options, &message, &place, nullptr);
    if (p->code) study(p, 0, max_steps);
    if (!p->extra || pcre_fullinfo(p->code, p->extra, PCRE_INFO_CAPTURECOUNT, &groups) != 0) {
        freeCode(p);
        return nullptr;
    }
    p->groups = static_cast<uint32_t>(groups);
    return p;
}

// Where the machine has none, or refuses it, the pattern stays as it is.
void makeMachineCode(CompiledPattern *p) {
    holdInterrupt();
    p->machine_code_tried = true;
    pcre_extra *const interpreted = p->extra;
    study(p, PCRE_STUDY_JIT_COMPILE, max_machine_code_steps);
    if (p->extra && p->extra->executable_jit) {
        pcre_free_study(interpreted);
        if (!machine_code_stack)
            machine_code_stack = pcre_jit_stack_alloc(first_machine_code_stack, max_machine_code_stack);
        pcre_assign_jit_stack(p->extra, nullptr, machine_code_stack);
    } else {
        if (p->extra) pcre_free_study(p->extra);
        p->extra = interpreted;
    }
    freeInterrupt();
}

unsigned long levelsLeft() {
    const char *here = static_cast<const char *>(__builtin_frame_address(0));
    return here > stack_limit ? static_cast<unsigned long>((here - stack_limit) / max_frame) : 1;
}

}  // namespace

void initPatterns() {
    pcre_malloc = takeHeld;
    pcre_free = freeHeld;
    setPayloadFree(L2::REGEXP, [](Matrix *m) { freeCode(static_cast<CompiledPattern *>(m->vdata)); });
}

// To the library a pattern ends at a NUL: a text that has one inside does not compile.
Matrix *regexp_comp(const Matrix *pattern, unsigned options) {
    const bool has_nul = textOf(pattern).find('\0') != std::string_view::npos;
    return newPayloadMat(L2::REGEXP, [=]() -> CompiledPattern * {
        return has_nul ? nullptr : compile(pattern->text(), options ? PCRE_CASELESS : 0);
    });
}

// ---- Searches

Search::Search(const Matrix *compiled, std::string_view text)
    : pattern(static_cast<CompiledPattern *>(compiled->vdata)) {
    assert(isCompiled(compiled));
    pattern->searched += text.size();
    if (!pattern->machine_code_tried && pattern->searched >= machine_code_pays) makeMachineCode(pattern);
    offsets = newIntMat(1, 3 * (pattern->groups + 1));  // the last third is for the library
}

uint32_t Search::groups() const { return pattern->groups; }

bool Search::findIn(std::string_view text) {
    pattern->extra->match_limit_recursion = levelsLeft();
    return pcre_exec(pattern->code, pattern->extra, text.data(), static_cast<int>(text.size()), 0, 0,
                     offsets->ints(), static_cast<int>(offsets->length)) > 0;
}

}  // namespace vesko

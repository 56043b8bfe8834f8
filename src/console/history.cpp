// The command history.
#include "console/history.h"

#include <cstring>

#include "console/worksheet.h"
#include "values/containers.h"
#include "values/memory.h"

namespace vesko {

CommandHistory cmdhist = {nullptr, nullptr, nullptr, 0, 100};
static Pod *free_cmdhist_mempod = nullptr;

static HistoryEntry *makeEntry(uint32_t nlines) {
    auto *entry = static_cast<HistoryEntry *>(m_malloc(sizeof(HistoryEntry)));
    *entry = {newVector(nlines), nullptr, nullptr, nullptr};
    return entry;
}

static HistoryEntry *takeOldest() {
    HistoryEntry *entry = cmdhist.head->next;
    cmdhist.head->next = entry->next;
    entry->next->prev = cmdhist.head;
    free_cmdhist_mempod = mergeMemPods(free_cmdhist_mempod, entry->mempod);
    entry->mempod = nullptr;
    freeVector(entry->lines, nullptr);
    return entry;
}

HistoryEntry *getNewCb(uint32_t nlines) {
    if (cmdhist.count <= cmdhist.limit) return makeEntry(nlines);
    HistoryEntry *entry = takeOldest();
    entry->lines = newVector(nlines);
    return entry;
}

static void makeSentinels() {
    cmdhist.head = makeEntry(0);
    cmdhist.tail = makeEntry(0);
    cmdhist.head->next = cmdhist.tail;
    cmdhist.tail->prev = cmdhist.head;
}

// The first line of the command from `line` on that has text, or null.
static const Vsline *nextTextLine(const Vsline *line) {
    for (; line; line = line == vscr.cmdlast ? nullptr : line->next)
        if (line->length > prompt_width) return line;
    return nullptr;
}

static const Vsline *following(const Vsline *line) {
    return nextTextLine(line == vscr.cmdlast ? nullptr : line->next);
}

static void copyLine(HistoryEntry *entry, const Vsline *line) {
    uint32_t length = line->length - prompt_width;
    auto *text = static_cast<char *>(newMem(length + 1, nullptr, free_cmdhist_mempod, entry->mempod));
    std::memcpy(text, line->text + prompt_width, length);
    text[length] = 0;
    addElement(entry->lines, text);
}

void writeCmdHist() {
    if (vscr.histdone || !vscr.cmdfirst) return;
    uint32_t nlines = 0;
    for (const Vsline *line = nextTextLine(vscr.cmdfirst); line; line = following(line)) ++nlines;
    if (nlines == 0) return;
    if (!cmdhist.head) makeSentinels();
    HistoryEntry *entry = getNewCb(nlines);
    for (const Vsline *line = nextTextLine(vscr.cmdfirst); line; line = following(line))
        copyLine(entry, line);
    entry->prev = cmdhist.tail->prev;
    entry->next = cmdhist.tail;
    entry->prev->next = entry;
    cmdhist.tail->prev = entry;
    ++cmdhist.count;
    cmdhist.cursor = entry;
    vscr.histdone = true;
}

}  // namespace vesko

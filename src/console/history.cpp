// The command history.
#include "console/history.h"

#include <cstring>

#include "console/worksheet.h"
#include "engine/interrupt.h"
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
    holdInterrupt();
    cmdhist.head->next = entry->next;
    entry->next->prev = cmdhist.head;
    free_cmdhist_mempod = mergeMemPods(free_cmdhist_mempod, entry->mempod);
    entry->mempod = nullptr;
    freeVector(entry->lines, nullptr);
    entry->lines = nullptr;
    freeInterrupt();
    return entry;
}

HistoryEntry *getNewCb(uint32_t nlines) {
    if (cmdhist.count <= cmdhist.limit || cmdhist.head->next == cmdhist.tail) return makeEntry(nlines);
    HistoryEntry *entry = takeOldest();
    entry->lines = newVector(nlines);
    return entry;
}

// Both stand before either is entered: memory may be refused between them.
static void makeSentinels() {
    HistoryEntry *head = makeEntry(0), *tail = makeEntry(0);
    head->next = tail;
    tail->prev = head;
    cmdhist.tail = tail;
    cmdhist.head = head;
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

// The text of a line and a NUL, put at `to`; what follows it.
static char *copyLine(HistoryEntry *entry, const Vsline *line, char *to) {
    uint32_t length = line->length - prompt_width;
    std::memcpy(to, line->text + prompt_width, length);
    to[length] = 0;
    addElement(entry->lines, to);
    return to + length + 1;
}

void writeCmdHist() {
    if (getcwmode() == worksheet_mode || vscr.histdone || !vscr.cmdfirst) return;
    uint32_t nlines = 0;
    size_t size = 0;
    for (const Vsline *line = nextTextLine(vscr.cmdfirst); line; line = following(line), ++nlines)
        size += line->length - prompt_width + 1;
    if (nlines == 0) return;
    if (!cmdhist.head) makeSentinels();
    HistoryEntry *entry = getNewCb(nlines);
    auto *text = static_cast<char *>(newMem(size, nullptr, free_cmdhist_mempod, entry->mempod));
    for (const Vsline *line = nextTextLine(vscr.cmdfirst); line; line = following(line))
        text = copyLine(entry, line, text);
    holdInterrupt();
    entry->prev = cmdhist.tail->prev;
    entry->next = cmdhist.tail;
    entry->prev->next = entry;
    cmdhist.tail->prev = entry;
    ++cmdhist.count;
    cmdhist.cursor = entry;
    vscr.histdone = true;
    freeInterrupt();
}

}  // namespace vesko

// The command history: the last commands that were entered, a hundred at most.
#pragma once

#include <cstdint>

namespace vesko {

struct Vector;
struct Pod;

struct HistoryEntry {
    Vector *lines;  // the command's lines, in order: NUL-terminated texts
    HistoryEntry *prev, *next;
    Pod *mempod;  // memory of the texts
};

struct CommandHistory {
    HistoryEntry *head, *tail;  // sentinels at the old and the new end; null before the first command
    HistoryEntry *cursor;       // what the Up key shows next
    uint32_t count;
    uint32_t limit;
};
extern CommandHistory cmdhist;

void writeCmdHist();                      // enters the current command, once
HistoryEntry *getNewCb(uint32_t nlines);  // a fresh entry; the oldest one once the limit is passed

}  // namespace vesko

// The source stack: pushing and popping of files, and the character layer with its pushback and line count.
#include "frontend/source.h"

#include <unistd.h>
#include <cerrno>

#include "console/worksheet.h"
#include "engine/interrupt.h"
#include "frontend/lexer.h"
#include "frontend/token.h"
#include "values/audit.h"
#include "values/matrix.h"
#include "values/memory.h"

namespace vesko {

VSFileList *filelist = nullptr;

static VSFileList *free_entries = nullptr;
static bool console_ended = false;

// ---- Entries

static VSFileList *newVSFileList(Matrix *name, std::FILE *stream) {
    VSFileList *entry = free_entries;
    if (entry) {
        free_entries = entry->next;
    } else {
        entry = static_cast<VSFileList *>(m_malloc(sizeof(VSFileList)));
    }
    linkMat(name);
    entry->name = name;
    entry->file = stream;
    entry->line = 0;
    entry->extra[0] = '\0';
    entry->after_cr = entry->at_end = false;
    entry->pos = entry->end = entry->buffer;
    return entry;
}

static void freeVSFileList(VSFileList *entry) {
    if (entry->file) std::fclose(entry->file);
    ucReleaseMat(entry->name);
    entry->next = free_entries;
    free_entries = entry;
}

void initSourceStack() {
    filelist = newVSFileList(theEmptyMat(), nullptr);
    filelist->next = nullptr;
    addHolderWalk("source", [] {
        for (const VSFileList *entry = filelist; entry; entry = entry->next) auditLink(entry->name);
    });
}

void updateCurrentFile(Matrix *name, std::FILE *stream) {
    VSFileList *entry = newVSFileList(name, stream);
    entry->next = filelist;
    filelist = entry;
}

void changeCurrentFileBack() {
    VSFileList *entry = filelist;
    if (!entry->next) return;
    holdInterrupt();
    filelist = entry->next;
    freeVSFileList(entry);
    freeInterrupt();
}

void resetFileList() {
    while (filelist->next) changeCurrentFileBack();
    while (filelist->extra[0]) getExtraCh();
}

const char *getCurrentFileName() { return filelist->name->l2type == L2::TX ? filelist->name->text() : ""; }

uint32_t getCurrLineNum() { return filelist->line + !filelist->at_end; }

// ---- Characters

// The next buffer of the file: its first byte, or end_of_input.
static int refill(VSFileList *source) {
    for (;;) {
        holdInterrupt();
        ssize_t n = read(fileno(source->file), source->buffer, sizeof source->buffer);
        source->pos = source->buffer;
        source->end = source->buffer + (n > 0 ? n : 0);
        freeInterrupt();
        if (n > 0) return static_cast<signed char>(*source->pos++);
        if (n == 0 || errno != EINTR) return end_of_input;
    }
}

static int fileByte(VSFileList *source) {
    return source->pos < source->end ? static_cast<signed char>(*source->pos++) : refill(source);
}

// CR counts as LF, and an LF right behind it is skipped.
static int fileChar(VSFileList *source) {
    int c = fileByte(source);
    if (c == '\n' && source->after_cr) c = fileByte(source);
    source->after_cr = c == '\r';
    return c == '\r' ? '\n' : c;
}

static int consoleChar() {
    int c = getChar();
    console_ended = c == end_of_input;
    countConsoleChar();
    return c;
}

static int countLine(int c) {
    filelist->at_end = c == '\n';
    filelist->line += c == '\n';
    return c;
}

int readch() { return countLine(filelist->file ? fileChar(filelist) : consoleChar()); }

int getExtraCh() {
    char *extra = filelist->extra;
    int c = static_cast<signed char>(extra[0]);
    if (c == '\0') return no_character;
    for (int i = 0; extra[i]; ++i) extra[i] = extra[i + 1];
    return countLine(c);
}

void setExtraCh(int c) {
    char *extra = filelist->extra;
    if (c == '\n') {
        --filelist->line;
        filelist->at_end = false;
    }
    if (extra[0] && extra[1] && extra[2]) tokenError("too many extra characters");
    for (int i = 3; i > 0; --i) extra[i] = extra[i - 1];
    extra[0] = static_cast<char>(c);
}

int nextCharSlowly() { return filelist->extra[0] ? getExtraCh() : readch(); }

static VSFileList *console() {
    VSFileList *entry = filelist;
    while (entry->next) entry = entry->next;
    return entry;
}

uint32_t consoleLine() { return console()->line; }

void setConsoleLine(uint32_t n) {
    console()->line = n;
    console()->at_end = true;
}

void countConsoleLines(uint32_t n) {
    if (n > 0) setConsoleLine(consoleLine() + n);
}

bool consoleEnded() { return console_ended && !filelist->next && !filelist->extra[0]; }

}  // namespace vesko

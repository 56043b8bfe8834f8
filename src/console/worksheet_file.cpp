// The worksheet as a text file: a kind character, the line's text, LF.
#include "console/worksheet_file.h"

#include <cstring>

#include "console/command.h"
#include "console/history.h"
#include "console/worksheet.h"
#include "engine/interrupt.h"
#include "values/containers.h"
#include "values/memory.h"

namespace vesko {

struct KindMark {
    char mark;
    LineKind kind;
};

static constexpr KindMark kind_marks[] = {
    {'0', LineKind::Head},   {'1', LineKind::Continuation}, {'2', LineKind::FirstOutput},
    {'3', LineKind::Output}, {'4', LineKind::Input},
};

static void writeText(const Vsline *line, uint32_t from, std::FILE *stream) {
    if (line->length > from) std::fwrite(line->text + from, 1, line->length - from, stream);
    std::putc('\n', stream);
}

void saveWorkSheet(std::FILE *stream) {
    holdInterrupt();
    for (const Vsline *line = vscr.head; line && line->kind != LineKind::Free; line = line->next) {
        for (const KindMark &k : kind_marks)
            if (k.kind == line->kind) std::putc(k.mark, stream);
        writeText(line, 0, stream);
    }
    freeInterrupt();
}

void saveCommandHist(std::FILE *stream) {
    holdInterrupt();
    for (const Vsline *line = vscr.head; line && line->kind != LineKind::Free; line = line->next)
        if (line->isCommand()) writeText(line, prompt_width, stream);
    freeInterrupt();
}

void saveCmdHist(std::FILE *stream) {
    if (!cmdhist.head) return;
    holdInterrupt();
    for (const HistoryEntry *entry = cmdhist.head->next; entry != cmdhist.tail; entry = entry->next)
        for (uint32_t k = 0; k < entry->lines->size; ++k)
            std::fprintf(stream, "%s\n", entry->lines->at<char>(k));
    freeInterrupt();
}

static void appendLine(const char *text, uint32_t length, LineKind kind) {
    Vsline *line = createVsline();
    reserveText(line, length);
    std::memcpy(line->text, text, length);
    line->length = length;
    line->kind = kind;
    insertAfter(vscr.tail, line);
}

// A mark that is unknown keeps the kind of the line before.
void loadWorkSheet(std::FILE *stream) {
    constexpr uint32_t first_capacity = 128;
    uint32_t capacity = first_capacity;
    char *buffer = mallocArray<char>(capacity);
    char last_end = 0;
    LineKind kind = LineKind::Head;
    holdInterrupt();
    if (!vscr.head) setScreenAttr();
    for (int mark = std::getc(stream); mark != EOF && mark != '\n'; mark = std::getc(stream)) {
        for (const KindMark &k : kind_marks)
            if (k.mark == mark) kind = k.kind;
        uint32_t length = xgetline(buffer, capacity, stream, last_end);
        if (length == 0) break;
        if (buffer[length - 1] == '\n') --length;
        appendLine(buffer, length, kind);
    }
    m_free(buffer, capacity);
    vscr.drawn = false;
    freshScr();
    freeInterrupt();
}

}  // namespace vesko

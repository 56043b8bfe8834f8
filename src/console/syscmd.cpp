// The system commands: words typed like shell commands.
#include <dirent.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <iterator>

#include "console/command.h"
#include "console/message.h"
#include "console/worksheet.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "frontend/parser.h"
#include "frontend/source.h"
#include "values/matrix.h"
#include "values/memory.h"

namespace vesko {
namespace {

// ---- Text of a stream or a file, line by line onto the worksheet

constexpr uint32_t line_buffer_size = 128;

// Shows the rest of a stream between two line breaks, and closes it. An interrupt ends it between two lines.
void showStream(std::FILE *stream, void (*showLine)(char *line, uint32_t length),
                int (*close)(std::FILE *) = std::fclose) {
    uint32_t capacity = line_buffer_size;
    char *buffer = mallocArray<char>(capacity);
    char last_end = 0;
    xPrintLineBrk(false, static_cast<int>(LineKind::FirstOutput));
    holdInterrupt();
    while (uint32_t length = xgetline(buffer, capacity, stream, last_end)) showLine(buffer, length);
    close(stream);
    m_free(buffer, capacity);
    freeInterrupt();
    xPrintLineBrk(false, static_cast<int>(LineKind::Output));
}

void showPlainLine(char *line, uint32_t length) {
    bool ends = line[length - 1] == '\n';
    xPutText(line, ends ? length - 1 : length);
    if (ends) xPrintLineBrk(false, static_cast<int>(LineKind::Output));
}

// Help texts are formats without arguments: a doubled percent sign stands for one.
void showHelpLine(char *line, uint32_t length) {
    uint32_t kept = 0;
    for (uint32_t i = 0; i < length; ++i) {
        line[kept++] = line[i];
        if (line[i] == '%' && i + 1 < length && line[i + 1] == '%') ++i;
    }
    showPlainLine(line, kept);
}

// The only argument as a string; null if it is of another kind.
Matrix *stringArgument(PcNode *node) {
    Matrix *m = node->eval(0);
    return m->l2type == L2::TX ? m : nullptr;
}

// ---- The commands

Matrix *ws_bf(PcNode *) {
    disp_top_varvec_info();
    return theNullMat();
}

Matrix *help_bf(PcNode *node) {
    if (node->ncub > 1) return theNullMat();
    const char *subject = "intro";
    if (node->ncub == 1) {
        Matrix *m = stringArgument(node);
        if (!m) xAbort("Error: help subject not a quoated string");
        subject = m->text();
    }
    if (std::FILE *file = openHFile(subject)) {
        showStream(file, showHelpLine);
    } else if (node->ncub == 1) {
        xMesg("Help file \"%s.txt\" not found", subject);
    } else {
        xMesg("Help file not found");
    }
    return theNullMat();
}

Matrix *buffstat_bf(PcNode *) {
    printMatBuffInfo();
    return theNullMat();
}

Matrix *pwd_bf(PcNode *) {
    char path[4096];
    if (getcwd(path, sizeof path)) xMesg("%s", path);
    return theNullMat();
}

Matrix *cd_bf(PcNode *node) {
    if (node->ncub != 1) return theNullMat();
    Matrix *path = stringArgument(node);
    if (!path) error_cd_path_no_string(node);
    if (chdir(path->text()) != 0) xMesg("Invalid path");
    return theNullMat();
}

// With any argument nothing is listed, and the result is the empty value.
Matrix *ls_bf(PcNode *node) {
    if (node->ncub > 0) return theEmptyMat();
    holdInterrupt();
    DIR *folder = opendir(".");
    if (folder) {
        while (const dirent *entry = readdir(folder))
            if (std::strcmp(entry->d_name, ".") && std::strcmp(entry->d_name, ".."))
                xMesg("%s", entry->d_name);
        closedir(folder);
    }
    freeInterrupt();
    return folder ? theNullMat() : theEmptyMat();
}

Matrix *exit_bf(PcNode *) { leaveProgram(0); }

Matrix *cat_bf(PcNode *node) {
    if (node->ncub != 1) return theEmptyMat();
    Matrix *name = stringArgument(node);
    if (!name) return theNullMat();
    std::FILE *file = openGFile(name->text());
    if (!file) {
        xMesg("Cannot open file \"%s\"", name->text());
        return theNullMat();
    }
    showStream(file, showPlainLine);
    return theNullMat();
}

Matrix *system_bf(PcNode *node) {
    if (node->ncub != 1) return theNullMat();
    Matrix *command = stringArgument(node);
    if (!command) return theNullMat();
    std::FILE *output = popen(command->text(), "r");
    if (!output) {
        xMesg("Cannot open output");
        return theNullMat();
    }
    showStream(output, showPlainLine, pclose);
    return theNullMat();
}

Matrix *clear_bf(PcNode *) {
    clearWindow();
    return theNullMat();
}

Matrix *mem_bf(PcNode *) {
    xMesg("Total memory allocated: %d bytes", get_total_mem_allocated());
    return theNullMat();
}

Matrix *chmode_bf(PcNode *) {
    reset_cwmode(-1);
    return theNullMat();
}

// The number of a command is its place in the table.
struct SysCommand {
    const char *word;
    ExecFn worker;
};
constexpr SysCommand syscmdfunc[] = {
    {"ws", ws_bf},         {"help", help_bf},   {"buffstat", buffstat_bf}, {"pwd", pwd_bf},
    {"cd", cd_bf},         {"ls", ls_bf},       {"exit", exit_bf},         {"cat", cat_bf},
    {"system", system_bf}, {"clear", clear_bf}, {"mem", mem_bf},           {"chmode", chmode_bf},
};

}  // namespace

uint32_t findSyscmd(const char *name) {
    for (uint32_t k = 0; k < std::size(syscmdfunc); ++k)
        if (!std::strcmp(syscmdfunc[k].word, name)) return k;
    return no_value;
}

const char *getSyscmdName(uint32_t number) { return syscmdfunc[number].word; }

PcNode *processSyscmd(uint32_t number, uint32_t count, Token *tokens) {
    uint32_t line = tokens ? tokens->line : getCurrLineNum();
    PcNode *node = newPcNode(NodeKind::SysCommand, static_cast<int32_t>(number), count, line);
    for (uint32_t k = 0; k < count; ++k, tokens = tokens->next) setPcCub(node, k, processTokenAtom(tokens));
    return node;
}

Matrix *execSyscmd(PcNode *node) { return syscmdfunc[node->value].worker(node); }

}  // namespace vesko

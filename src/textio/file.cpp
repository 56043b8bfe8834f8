// File values: their records, opening and closing, and what their state allows.
#include "textio/file.h"

#include <cstring>
#include <iterator>

#include "console/message.h"
#include "engine/errors.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "values/audit.h"
#include "values/memory.h"
#include "values/payload.h"

namespace vesko {

// ---- Modes

const char *getFileMode(uint8_t bits) {
    static constexpr struct {
        uint8_t bits;
        const char *text;
    } modes[] = {
        {1, "r"},   {2, "w"},   {4, "a"},   {9, "r+"},   {10, "w+"},  {12, "a+"},
        {17, "rt"}, {18, "wt"}, {20, "at"}, {25, "r+t"}, {26, "w+t"}, {28, "a+t"},
    };
    for (const auto &mode : modes)
        if (mode.bits == bits) return mode.text;
    return nullptr;
}

static uint8_t modeBits(const char *text) {
    static constexpr char letters[] = "rwa+t";
    uint8_t bits = 0;
    for (unsigned k = 0; letters[k]; k++)
        if (std::strchr(text, letters[k])) bits |= 1 << k;
    return bits;
}

// ---- Opening and closing

constexpr int32_t item_size = 1;
constexpr FileRecord closed_file = {nullptr, nullptr, 0, 0, item_size};

Matrix *newFileMat() {
    return newPayloadMat(L2::FILEH, [] {
        FileRecord *file = newBlock<FileRecord>();
        *file = closed_file;
        return file;
    });
}

void open_file(FileRecord *file, Matrix *name, const Matrix *mode, PcNode *node) {
    const char *mode_text = mode ? mode->text() : "r";
    holdInterrupt();
    std::FILE *stream = std::fopen(name->text(), mode_text);
    if (stream) {
        linkMat(name);
        *file = {name, stream, modeBits(mode_text), 1, item_size};
    }
    freeInterrupt();
    if (stream) return;
    error_file_open(node, mode ? OpenFault::FailedWithMode : OpenFault::Failed, name->text(), mode_text);
}

// The name stays linked: it is the caller's.
static bool closeStream(FileRecord *file) {
    std::FILE *stream = file->stream;
    *file = closed_file;
    return std::fclose(stream) == 0;
}

void close_file(FileRecord *file, PcNode *node) {
    awaitOutput(file);
    Matrix *name = pinMat(file->name);
    holdInterrupt();
    const bool written = closeStream(file);
    ucReleaseMat(name);
    freeInterrupt();
    if (!written) error_file_write(node, FileFault::Failed, name->text());
    releaseMat(unpinMat());
}

// A file that nobody holds any more.
static void freeFile(Matrix *m) {
    FileRecord *file = fileOf(m);
    if (file->open) {
        Matrix *name = file->name;
        if (!closeStream(file)) xMesg("file '%s' writing failed", name->text());
        ucReleaseMat(name);
    }
    recycleBlock(file);
}

void initFiles() {
    setPayloadFree(L2::FILEH, freeFile);
    setPayloadWalk(L2::FILEH, [](const Matrix *m) { auditLink(fileOf(m)->name); });
}

void flushFiles() { std::fflush(nullptr); }

// ---- Judging

const char *sourceOfArgument(PcNode *call, uint32_t k) {
    if (!call) return "";
    const bool known = call->kind == NodeKind::BuiltinCall && k < call->ncub;
    return pcnode2str(known ? call->child(k) : call)->text();
}

// A member call stands on a field node, and that on the file.
static const char *nameOf(const FileRecord *file, PcNode *node) {
    if (file->open) return file->name->text();
    if (!node) return "";
    if (node->kind == NodeKind::Field) return pcnode2str(node->child(0))->text();
    const bool member = node->kind >= NodeKind::MemberCall0 && node->kind <= NodeKind::MemberCallNp;
    return member ? nameOf(file, node->child(0)) : sourceOfArgument(node, 0);
}

static FileFault faultOf(const FileRecord *file, uint8_t modes) {
    if (!file->open) return FileFault::NotOpen;
    return file->mode & modes ? FileFault::Failed : FileFault::WrongMode;
}

void refuseRead(const FileRecord *file, PcNode *node) {
    error_file_read(node, faultOf(file, file_mode_r), nameOf(file, node));
}

[[noreturn]] static void refuseWrite(const FileRecord *file, uint8_t modes, PcNode *node) {
    error_file_write(node, faultOf(file, modes), nameOf(file, node));
}

void refuseWrite(const FileRecord *file, PcNode *node) { refuseWrite(file, file_mode_w | file_mode_a, node); }

void demandOpen(const FileRecord *file, PcNode *node) {
    if (!file->open) refuseRead(file, node);
}

void demandReadable(const FileRecord *file, PcNode *node) {
    if (faultOf(file, file_mode_r) != FileFault::Failed) refuseRead(file, node);
}

void demandWritable(const FileRecord *file, uint8_t modes, PcNode *node) {
    if (faultOf(file, modes) != FileFault::Failed) refuseWrite(file, modes, node);
}

}  // namespace vesko

// What files answer to the dot.
#include <cmath>
#include <cstring>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "console/message.h"
#include "engine/errors.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "members/auto_fields.h"
#include "members/methods.h"
#include "operators/text_builder.h"
#include "textio/file.h"
#include "values/convert.h"

namespace vesko {

// ---- Fields

static FileRecord *openFileOf(const Matrix *m, PcNode *node) {
    demandOpen(fileOf(m), node);
    return fileOf(m);
}

Matrix *mat_field_eof_file(Matrix *m, PcNode *node) {
    return newIntScalarMat(feof_unlocked(openFileOf(m, node)->stream) != 0);
}

Matrix *mat_field_error_file(Matrix *m, PcNode *node) {
    return newIntScalarMat(ferror_unlocked(openFileOf(m, node)->stream) != 0);
}

Matrix *mat_field_mode_file(Matrix *m, PcNode *node) {
    openFileOf(m, node);
    return mode_bf(m, nullptr, node);
}

Matrix *mat_field_status_file(Matrix *m, PcNode *node) { return status_bf(m, nullptr, node); }

Matrix *mat_field_name_file(Matrix *m, PcNode *) { return fileOf(m)->open ? fileOf(m)->name : theEmptyMat(); }

namespace {

FileRecord *readableFile(const MethodCall &call) {
    demandReadable(fileOf(call.owner), call.node);
    return fileOf(call.owner);
}

FileRecord *writableFile(const MethodCall &call) {
    demandWritable(fileOf(call.owner), file_mode_w | file_mode_a, call.node);
    return fileOf(call.owner);
}

Matrix *orEmpty(Matrix *m) { return m ? m : theEmptyMat(); }

// A number that no integer holds is a real one.
Matrix *newPosition(off_t n) {
    if (n > INT32_MAX) return newRealScalarMat(static_cast<double>(n));
    return newIntScalarMat(static_cast<int32_t>(n));
}

}  // namespace

// ---- Opening and closing

Matrix *method_open(MethodCall &call) {
    Matrix *name = call.arg(0);
    const Matrix *mode = call.nargs > 1 ? call.arg(1) : nullptr;
    PcNode *sources = call.node->child(1);
    if (name->l2type != L2::TX)
        error_file_open(call.node, OpenFault::NameNotString, pcnode2str(sources->child(0))->text(), nullptr);
    if (mode && mode->l2type != L2::TX)
        error_file_open(call.node, OpenFault::ModeNotString, name->text(),
                        pcnode2str(sources->child(1))->text());
    FileRecord *file = fileOf(call.owner);
    if (file->open) close_file(file, call.node);
    open_file(file, name, mode, call.node);
    return call.owner;
}

Matrix *method_close(MethodCall &call) { return close_bf(call.owner, nullptr, call.node); }

// ---- Reading

// Of a file that is not opened for reading, the answer is true.
Matrix *method_readline(MethodCall &call) {
    FileRecord *file = openFileOf(call.owner, call.node);
    return file->mode & file_mode_r ? orEmpty(get_line(file, call.node)) : theTrueMat();
}

Matrix *method_getchar(MethodCall &call) { return orEmpty(readChar(readableFile(call), call.node)); }

Matrix *method_read(MethodCall &call) {
    FileRecord *file = readableFile(call);
    const int32_t n = call.integerArg(0, 0, INT32_MAX, "fread");
    return readBytes(file, uint64_t(n) * file->itemSize, call.node);
}

// ---- Writing

// Bytes of an element as they are written; 0 for kinds that are not.
static uint32_t elementSize(L2 kind) {
    switch (kind) {
        case L2::IM:
        case L2::IS: return sizeof(int32_t);
        case L2::RM:
        case L2::RS: return sizeof(double);
        case L2::BY:
        case L2::TX: return 1;
        default: return 0;
    }
}

Matrix *method_write(MethodCall &call) {
    FileRecord *file = writableFile(call);
    const Matrix *m = call.arg(0);
    const uint32_t size = elementSize(m->l2type);
    if (size == 0) {
        xMesg("undefined operation: bmat->l2type=%u", index(m->l2type));
        return newIntScalarMat(0);
    }
    const void *data = size == sizeof(double) ? m->rdata : m->vdata;
    if (!writeText(file, {static_cast<const char *>(data), size_t{m->length} * size}))
        refuseWrite(file, call.node);
    return newIntScalarMat(static_cast<int32_t>(m->length));
}

// A closed file is told of as in reading.
Matrix *method_writeline(MethodCall &call) {
    openFileOf(call.owner, call.node);
    FileRecord *file = writableFile(call);
    const Matrix *text = call.arg(0);
    if (text->l2type != L2::TX)
        error_file_writeline(call.node, false, pcnode2str(call.node->child(1)->child(0))->text());
    if (!writeLine(file, textOf(text))) refuseWrite(file, call.node);
    return newPosition(off_t{text->length} + 1);
}

Matrix *method_flush(MethodCall &call) {
    FileRecord *file = fileOf(call.owner);
    if (!file->open) refuseWrite(file, call.node);
    if (!flushFile(file)) refuseWrite(file, call.node);
    return theTrueMat();
}

// ---- Positions

static int moveTo(FileRecord *file, off_t offset, int base) {
    holdInterrupt();
    const int failed = fseeko(file->stream, offset, base);
    freeInterrupt();
    return failed;
}

static bool readOffset(const Matrix *m, off_t &offset) {
    constexpr double largest = 1LL << 53;
    double x;
    if (!extract_RS(m, x) || x != std::floor(x) || std::fabs(x) > largest) return false;
    offset = static_cast<off_t>(x);
    return true;
}

static bool readBase(const Matrix *m, int &base) {
    static constexpr struct {
        const char *text;
        int base;
    } bases[] = {{"beginning", SEEK_SET}, {"current", SEEK_CUR}, {"end", SEEK_END}};
    for (const auto &b : bases) {
        if (std::strcmp(m->text(), b.text) != 0) continue;
        base = b.base;
        return true;
    }
    return false;
}

// The arguments come as they are written: the base is evaluated and judged first.
Matrix *method_seek(MethodCall &call) {
    FileRecord *file = openFileOf(call.owner, call.node);
    const PcNode *args = call.node->child(1);
    Matrix *text = args->eval(1);
    int base = SEEK_SET;
    if (text->l2type != L2::TX) refuseRead(file, call.node);
    const bool known = readBase(text, base);
    releaseMat(text);
    Matrix *number = args->eval(0);
    demandOpen(file, call.node);
    off_t offset;
    if (!readOffset(number, offset)) error_file_seek(call.node, true, file->name->text());
    if (!known) error_file_seek(call.node, false, file->name->text());
    releaseMat(number);
    return newIntScalarMat(moveTo(file, offset, base));
}

static off_t positionOf(const MethodCall &call) {
    FileRecord *file = openFileOf(call.owner, call.node);
    holdInterrupt();
    const off_t position = ftello(file->stream);
    freeInterrupt();
    return position;
}

Matrix *method_tell(MethodCall &call) { return newPosition(positionOf(call)); }

Matrix *method_rewind(MethodCall &call) {
    FileRecord *file = fileOf(call.owner);
    if (!file->open) return theFalseMat();
    holdInterrupt();
    std::rewind(file->stream);
    freeInterrupt();
    return theTrueMat();
}

// A saved position is the offset, and bytes that are not used behind it.
constexpr uint32_t saved_position_size = 12;
static_assert(sizeof(off_t) <= saved_position_size);

Matrix *method_getpos(MethodCall &call) {
    const off_t position = positionOf(call);
    Matrix *saved = newByteMat(1, saved_position_size);
    std::memset(saved->bytes(), 0, saved_position_size);
    std::memcpy(saved->bytes(), &position, sizeof position);
    return saved;
}

Matrix *method_setpos(MethodCall &call) {
    FileRecord *file = openFileOf(call.owner, call.node);
    const Matrix *saved = call.arg(0);
    if (saved->l2type != L2::BY || saved->length != saved_position_size)
        error_bf_argk_domain(call.node, "fsetpos", 1);
    off_t position;
    std::memcpy(&position, saved->bytes(), sizeof position);
    return truthMat(moveTo(file, position, SEEK_SET) == 0);
}

}  // namespace vesko

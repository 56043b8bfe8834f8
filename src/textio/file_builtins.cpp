// Built-ins that open, close and write files, and ask for them; and input from the worksheet.
#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "console/message.h"
#include "console/worksheet.h"
#include "engine/errors.h"
#include "operators/text_builder.h"
#include "textio/file.h"

namespace vesko {

// ---- Opening and closing

Matrix *open_bf(Matrix *args, Matrix **, PcNode *node) {
    const bool has_mode = isList(args->l2type);
    if (has_mode) demandCount(args, 2, node, "open");
    Matrix *name = has_mode ? args->entries()[0] : args;
    const Matrix *mode = has_mode ? args->entries()[1] : nullptr;
    if (name->l2type != L2::TX) error_bf_filename(node);
    if (mode && mode->l2type != L2::TX) error_bf_fileoptions(node);
    Matrix *file = newFileMat();
    open_file(fileOf(file), name, mode, node);
    return file;
}

Matrix *close_bf(Matrix *f, Matrix **, PcNode *node) {
    if (f->l2type != L2::FILEH) refuseArgument(node, "close");
    FileRecord *file = fileOf(f);
    if (file->open)
        close_file(file, node);
    else
        xMesg("file status=%d", file->open);
    return theEmptyMat();
}

// ---- State

Matrix *mode_bf(Matrix *f, Matrix **, PcNode *) {
    const bool is_open = f->l2type == L2::FILEH && fileOf(f)->open;
    const char *mode = is_open ? getFileMode(fileOf(f)->mode) : nullptr;
    return mode ? newStrMatCopy(mode) : theEmptyMat();
}

Matrix *status_bf(Matrix *f, Matrix **, PcNode *) {
    return f->l2type == L2::FILEH ? truthMat(fileOf(f)->open) : theEmptyMat();
}

// ---- Lines

// A file that is opened for appending takes lines through its member only.
Matrix *writeline_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 2, node, "writeline");
    const Matrix *f = argAt(args, 0), *text = argAt(args, 1);
    if (f->l2type != L2::FILEH) error_file_writeline(node, true, sourceOfArgument(node, 0));
    if (text->l2type != L2::TX) error_file_writeline(node, false, sourceOfArgument(node, 1));
    FileRecord *file = fileOf(f);
    demandWritable(file, file_mode_w, node);
    if (!writeLine(file, textOf(text))) refuseWrite(file, node);
    return newRealScalarMat(text->length + 1.0);
}

// From the worksheet; the empty value at the end of the input.
Matrix *getline_bf(Matrix *args, Matrix **, PcNode *node) {
    const bool prompted = args->l2type == L2::TX;
    if (!prompted) demandCount(args, 0, node, "getline");
    uint32_t start, end;
    if (!getLine(prompted ? args->text() : "", start, end)) return theEmptyMat();
    return newStrMatCopyN(vscr.current->text + start, end - start);
}

}  // namespace vesko

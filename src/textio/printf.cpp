// Formatted output: to texts, to the worksheet and to files.
#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "members/methods.h"
#include "operators/text_builder.h"
#include "textio/file.h"
#include "textio/format.h"
#include "values/display.h"

namespace vesko {

namespace {

class TextOutput final : public TextSink {
public:
    explicit TextOutput(uint32_t expected) : text_(expected) {}
    void add(std::string_view text) override { text_.add(text); }
    Matrix *finish() const { return text_.finish(); }

private:
    TextBuilder text_;
};

class FileOutput final : public TextSink {
public:
    FileOutput(FileRecord *file, PcNode *node) : file_(file), node_(node) {}
    void add(std::string_view text) override {
        if (!writeText(file_, text)) error_printf(node_);
        written_ += static_cast<int32_t>(text.size());
    }
    Matrix *finish() const { return newIntScalarMat(written_); }

private:
    FileRecord *file_;
    PcNode *node_;
    int32_t written_ = 0;
};

// ---- Texts

bool hasPercent(const Matrix *format) { return textOf(format).find('%') != std::string_view::npos; }

// The new text, or the format itself if nothing in it is replaced.
Matrix *printToText(Matrix *args, PcNode *node) {
    const uint32_t n = argCount(args);
    if (n == 0 || argAt(args, 0)->l2type != L2::TX) refuseArgument(node, "sprintf");
    Matrix *format = argAt(args, 0);
    if (n == 1 && !hasPercent(format)) return format;
    TextOutput text(format->length);
    printItems(text, format, n > 1 ? args->entries() + 1 : nullptr, n - 1, node);
    return text.finish();
}

// ---- Files

Matrix *printToFile(FileRecord *file, Matrix *const *args, uint32_t n, PcNode *node) {
    FileOutput output(file, node);
    printItems(output, args[0], args + 1, n - 1, node);
    return output.finish();
}

}  // namespace

Matrix *sprintf_bf(Matrix *args, Matrix **, PcNode *node) { return printToText(args, node); }

Matrix *printf_bf(Matrix *args, Matrix **, PcNode *node) {
    Matrix *text = printToText(args, node);
    dispMat(text);
    releaseMat(text);
    return theNullMat();
}

Matrix *fprintf_bf(Matrix *args, Matrix **, PcNode *node) {
    constexpr uint32_t most_arguments = 10000;
    demandCount(args, 2, most_arguments, node, "fprintf");
    demandKind(args, 0, L2::FILEH, node, "fprintf");
    FileRecord *file = fileOf(argAt(args, 0));
    demandWritable(file, file_mode_w | file_mode_a, node);
    return printToFile(file, args->entries() + 1, args->length - 1, node);
}

// A file that is opened for appending takes fprintf only.
Matrix *method_printf(MethodCall &call) {
    FileRecord *file = fileOf(call.owner);
    demandWritable(file, file_mode_w, call.node);
    return printToFile(file, call.args->entries(), call.nargs, call.node);
}

}  // namespace vesko

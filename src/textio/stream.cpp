// Reading and writing through the streams of files.
//
// The library must not be left by a jump, so an interrupt waits while it works. Waiting for input happens
// outside it. Output that waits, for a reader of a pipe, is given up by the library when a signal comes.
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "engine/interrupt.h"
#include "operators/text_builder.h"
#include "textio/file.h"

namespace vesko {

// ---- Input

// The unread bytes in the buffer of the stream.
static std::string_view buffered(const std::FILE *stream) {
    return {stream->_IO_read_ptr, static_cast<size_t>(stream->_IO_read_end - stream->_IO_read_ptr)};
}

static void takeBuffered(std::FILE *stream, size_t n) { stream->_IO_read_ptr += n; }

// Lets the stream fill its buffer. False if the file is at its end.
static bool fillBuffer(FileRecord *file, PcNode *node) {
    std::FILE *stream = file->stream;
    holdInterrupt();
    const int c = getc_unlocked(stream);
    const bool interrupted = c == EOF && ferror_unlocked(stream) && errno == EINTR;
    if (c != EOF) std::ungetc(c, stream);
    if (interrupted) clearerr_unlocked(stream);
    freeInterrupt();
    if (c != EOF || interrupted) return true;
    if (!feof_unlocked(stream)) refuseRead(file, node);
    return false;
}

static void awaitReadable(std::FILE *stream) {
    pollfd input = {fileno_unlocked(stream), POLLIN, 0};
    while (poll(&input, 1, -1) < 0 && errno == EINTR) continue;
}

bool awaitInput(FileRecord *file, PcNode *node) {
    while (buffered(file->stream).empty()) {
        awaitReadable(file->stream);
        if (!fillBuffer(file, node)) return false;
    }
    return true;
}

Matrix *readChar(FileRecord *file, PcNode *node) {
    if (!awaitInput(file, node)) return nullptr;
    Matrix *text = newStrMatCopyN(buffered(file->stream).data(), 1);
    takeBuffered(file->stream, 1);
    return text;
}

static std::string_view withoutCr(std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

static Matrix *newText(std::string_view text) {
    return newStrMatCopyN(text.data(), static_cast<uint32_t>(text.size()));
}

// A line that goes on behind the buffer, or to the end of the file.
static Matrix *getLongLine(FileRecord *file, PcNode *node) {
    TextBuilder line(0);
    do {
        const std::string_view piece = buffered(file->stream);
        const size_t end = std::min(piece.find('\n'), piece.size());
        line.add(piece.substr(0, end));
        takeBuffered(file->stream, end);
        if (end < piece.size()) {
            takeBuffered(file->stream, 1);
            break;
        }
    } while (awaitInput(file, node));
    Matrix *text = line.finish();
    const std::string_view kept = withoutCr(textOf(text));
    return kept.size() == text->length ? text : newText(kept);
}

Matrix *get_line(FileRecord *file, PcNode *node) {
    if (!awaitInput(file, node)) return nullptr;
    const std::string_view text = buffered(file->stream);
    const size_t end = text.find('\n');
    if (end == std::string_view::npos) return getLongLine(file, node);
    Matrix *line = newText(withoutCr(text.substr(0, end)));
    takeBuffered(file->stream, end + 1);
    return line;
}

Matrix *readBytes(FileRecord *file, uint64_t n, PcNode *node) {
    TextBuilder bytes(0);
    while (n > 0 && awaitInput(file, node)) {
        const std::string_view piece = buffered(file->stream).substr(0, n);
        bytes.add(piece);
        takeBuffered(file->stream, piece.size());
        n -= piece.size();
    }
    Matrix *m = bytes.finish();
    if (m->length == 0) return theEmptyMat();
    m->l2type = L2::BY;
    m->ncols = m->length;
    return m;
}

// ---- Output

// In pieces, so that an interrupt gets its turn.
bool writeText(FileRecord *file, std::string_view text) {
    constexpr size_t piece_size = size_t{1} << 20;
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, piece_size);
        holdInterrupt();
        const bool written = fwrite_unlocked(piece.data(), 1, piece.size(), file->stream) == piece.size();
        freeInterrupt();
        if (!written) return false;
        text.remove_prefix(piece.size());
    }
    return true;
}

bool writeLine(FileRecord *file, std::string_view text) {
    return writeText(file, text) && writeText(file, "\n");
}

}  // namespace vesko

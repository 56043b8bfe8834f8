// Reading and writing through the streams of files.
//
// The library must not be left by a jump, so an interrupt waits while it works. Waiting, for input or for the
// reader of a pipe, happens outside it.
#include <poll.h>
#include <stdio_ext.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "engine/interrupt.h"
#include "operators/text_builder.h"
#include "textio/file.h"

namespace vesko {

static void awaitStream(std::FILE *stream, short events) {
    pollfd wanted = {fileno_unlocked(stream), events, 0};
    while (poll(&wanted, 1, -1) < 0 && errno == EINTR) continue;
}

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

bool awaitInput(FileRecord *file, PcNode *node) {
    while (buffered(file->stream).empty()) {
        awaitStream(file->stream, POLLIN);
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

// A pipe that is ready takes as much as this, and so no single write of the library waits.
constexpr size_t piece_size = PIPE_BUF;

static bool writePiece(std::FILE *stream, std::string_view piece) {
    if (__fpending(stream) + piece.size() > __fbufsize(stream)) awaitStream(stream, POLLOUT);
    holdInterrupt();
    const bool written = fwrite_unlocked(piece.data(), 1, piece.size(), stream) == piece.size();
    freeInterrupt();
    return written;
}

bool writeText(FileRecord *file, std::string_view text) {
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, piece_size);
        if (!writePiece(file->stream, piece)) return false;
        text.remove_prefix(piece.size());
    }
    return true;
}

bool flushFile(FileRecord *file) {
    awaitOutput(file);
    holdInterrupt();
    const bool written = std::fflush(file->stream) == 0;
    freeInterrupt();
    return written;
}

void awaitOutput(FileRecord *file) {
    if (__fpending(file->stream) > 0) awaitStream(file->stream, POLLOUT);
}

bool writeLine(FileRecord *file, std::string_view text) {
    return writeText(file, text) && writeText(file, "\n");
}

}  // namespace vesko

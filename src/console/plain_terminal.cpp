// The plain terminal: standard input and output as streams of lines, 80 columns by 24 rows.
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "console/editor.h"
#include "console/terminal.h"
#include "console/worksheet.h"
#include "engine/interrupt.h"
#include "textio/file.h"
#include "values/memory.h"

namespace vesko {
namespace {

class PlainTerminal final : public Terminal {
public:
    uint32_t rows() const override { return 24; }
    uint32_t columns() const override { return 80; }
    void lineFinished(const Vsline &line) override;
    void redraw() override { vscr.drawn = true; }
    bool editLine() override;
    void finish() override { lineFinished(*vscr.current); }

private:
    bool fillInput();

    // A person at a terminal sees the prompt; a pipe does not.
    const bool prompts_ = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    uint32_t blank_lines_ = 0;  // empty output lines that only more output below brings out
    char input_[65536];
    size_t input_pos_ = 0, input_end_ = 0;
};

// Nobody reads the output any more: the process ends as such processes do.
[[noreturn]] void endWithBrokenPipe() {
    flushFiles();
    std::signal(SIGPIPE, SIG_DFL);
    std::raise(SIGPIPE);
    std::_Exit(1);  // the signal is blocked
}

void writeAll(const char *text, size_t length) {
    while (length > 0) {
        ssize_t written = write(STDOUT_FILENO, text, length);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EPIPE) endWithBrokenPipe();
        if (written <= 0) return;
        text += written;
        length -= static_cast<size_t>(written);
    }
}

void writeLine(const Vsline &line) {
    char small[512];
    if (line.length < sizeof small) {
        std::memcpy(small, line.text, line.length);
        small[line.length] = '\n';
        writeAll(small, line.length + 1);
    } else {
        writeAll(line.text, line.length);
        writeAll("\n", 1);
    }
}

void PlainTerminal::lineFinished(const Vsline &line) {
    if (line.kind != LineKind::FirstOutput && line.kind != LineKind::Output) return;
    if (line.kind == LineKind::FirstOutput) blank_lines_ = 0;
    if (line.kind == LineKind::Output && line.length == 0) {
        ++blank_lines_;
        return;
    }
    for (; blank_lines_ > 0; --blank_lines_) writeAll("\n", 1);
    writeLine(line);
}

// More bytes from standard input. An interrupt can leave the wait, but not the reading: what has been taken
// is kept.
bool PlainTerminal::fillInput() {
    for (;;) {
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        if (poll(&input, 1, -1) < 0 && errno == EINTR) continue;
        holdInterrupt();
        ssize_t got = read(STDIN_FILENO, input_, sizeof input_);
        const int error = errno;
        if (got > 0) {
            input_pos_ = 0;
            input_end_ = static_cast<size_t>(got);
        }
        freeInterrupt();
        if (got > 0) return true;
        if (got == 0 || error != EINTR) return false;
    }
}

// The last line of the input may lack its end.
bool endLine() {
    cmd_enter();
    return true;
}

// What a program asks for is shown to a pipe too, as an output line.
bool PlainTerminal::editLine() {
    bool got_text = false;
    const uint32_t start = vscr.current->length;
    if (prompts_)
        writeAll(vscr.current->text, start);
    else if (vscr.current->kind == LineKind::Input && start > prompt_width)
        writeLine(*vscr.current);
    for (;;) {
        if (input_pos_ == input_end_ && !fillInput()) return got_text && endLine();
        got_text = true;
        const char *begin = input_ + input_pos_;
        size_t length = input_end_ - input_pos_;
        const auto *end = static_cast<const char *>(std::memchr(begin, '\n', length));
        if (end) length = static_cast<size_t>(end - begin);
        holdInterrupt();
        printStr(begin, static_cast<uint32_t>(length), false);
        input_pos_ += length + (end ? 1 : 0);
        if (end && vscr.current->length > start && vscr.current->text[vscr.current->length - 1] == '\r')
            --vscr.current->length;
        if (end) cmd_enter();
        freeInterrupt();
        if (end) return true;
    }
}

PlainTerminal instance;

}  // namespace

Terminal &plain_terminal = instance;

}  // namespace vesko

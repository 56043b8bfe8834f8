// The full-screen terminal: a window on the worksheet's lines, drawn by curses, and the keyboard.
#include <curses.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <initializer_list>

#include "console/editor.h"
#include "console/terminal.h"
#include "console/window.h"
#include "console/worksheet.h"
#include "engine/interrupt.h"

namespace vesko {
namespace {

class FullScreen final : public Terminal {
public:
    bool open();
    uint32_t rows() const override { return static_cast<uint32_t>(LINES); }
    uint32_t columns() const override { return static_cast<uint32_t>(COLS); }
    void lineFinished(const Vsline &) override {}
    void redraw() override;
    bool editLine() override;
    void finish() override { endwin(); }

private:
    void draw();
    void resize();
    int read_ch();
};

// ---- Drawing

constexpr long lazy_ms = 200;  // at most so often while a program prints

long nowInMs() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
    return t.tv_sec * 1000 + t.tv_nsec / 1000000;
}

// Printing from a loop must not spend its time on the screen: what is left undrawn is drawn before a key is
// awaited.
void FullScreen::redraw() {
    if (nowInMs() - vscr.lastdraw >= lazy_ms) draw();
}

// In screen mode a program draws in its place.
void FullScreen::draw() {
    if (cwmode_nodisplay()) return;
    holdInterrupt();
    placeWindow();
    drawWorksheet();
    refresh();
    vscr.drawn = true;
    vscr.lastdraw = nowInMs();
    freeInterrupt();
}

void FullScreen::resize() {
    vscr.rows = rows();
    vscr.columns = columns();
    clearok(stdscr, TRUE);
    vscr.drawn = false;
}

// ---- Keys

// The next key; the screen is current whenever one is awaited. An interrupt can leave the wait only.
int FullScreen::read_ch() {
    for (;;) {
        holdInterrupt();
        const int key = wgetch(stdscr);
        freeInterrupt();
        if (key != ERR) return key;
        if (!vscr.drawn) draw();
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        if (poll(&input, 1, -1) > 0 && (input.revents & (POLLHUP | POLLERR | POLLNVAL))) return ERR;
    }
}

bool FullScreen::editLine() {
    for (;;) {
        const int key = read_ch();
        if (key == ERR) return false;
        holdInterrupt();
        const bool done = key == KEY_RESIZE ? (resize(), false) : editKey(key);
        freeInterrupt();
        if (done) return true;
    }
}

// ---- Start and end

// Whatever ends the process, the terminal is left as it was found.
void endBySignal(int signal) {
    endwin();
    std::signal(signal, SIG_DFL);
    raise(signal);
}

// The handler must run even where the machine stack is at its end.
void installEndings() {
    static char stack[65536];
    const stack_t spare = {stack, 0, sizeof stack};
    sigaltstack(&spare, nullptr);
    for (int signal : {SIGTERM, SIGHUP, SIGQUIT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        struct sigaction action = {};
        action.sa_handler = endBySignal;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER | SA_ONSTACK);
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

// The terminal would stop its output at Ctrl-S, and end the program at Ctrl-\. Curses puts the old state
// back.
void releaseKeys() {
    termios state;
    if (tcgetattr(STDIN_FILENO, &state) != 0) return;
    state.c_iflag &= ~static_cast<tcflag_t>(IXON);
    state.c_cc[VQUIT] = _POSIX_VDISABLE;
    tcsetattr(STDIN_FILENO, TCSANOW, &state);
    def_prog_mode();
}

bool FullScreen::open() {
    const char *type = std::getenv("TERM");
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO) || !type) return false;
    std::setlocale(LC_CTYPE, "");
    if (!canMoveCursor(type) || !newterm(type, stdout, stdin)) return false;
    initColours();
    cbreak();
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    set_escdelay(25);
    releaseKeys();
    installEndings();
    return true;
}

FullScreen full_screen;

}  // namespace

Terminal *openFullScreen() { return full_screen.open() ? &full_screen : nullptr; }

}  // namespace vesko

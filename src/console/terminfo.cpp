// What the terminal can do. The header of terminfo defines many short names, so it stands here alone.
#include <curses.h>
#include <term.h>
#include <unistd.h>

namespace vesko {

bool canMoveCursor(const char *type) {
    int error;
    if (setupterm(type, STDOUT_FILENO, &error) == ERR) return false;
    const bool can = tigetstr("cup") != nullptr;
    del_curterm(cur_term);
    return can;
}

}  // namespace vesko

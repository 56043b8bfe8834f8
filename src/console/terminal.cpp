// The choice of the terminal.
#include "console/terminal.h"

#include "console/worksheet.h"

namespace vesko {

Terminal *terminal = &plain_terminal;

void initScreen() {
    if (Terminal *full_screen = openFullScreen()) terminal = full_screen;
    vscr.rows = terminal->rows();
    vscr.columns = terminal->columns();
}

void finishScreen() { terminal->finish(); }

}  // namespace vesko

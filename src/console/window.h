// The window on the worksheet: what of it is seen, and how its lines are drawn.
#pragma once

namespace vesko {

bool canMoveCursor(const char *type);  // a terminal of that type can be driven

// ---- Curses is up.
void initColours();
void placeWindow();    // settles the top line and the cursor's row so that the cursor is seen
void drawWorksheet();  // fills the screen's lines and places the cursor

}  // namespace vesko

// Screen mode: the terminal as a grid of cells that a program draws on and reads keys from, in place of the
// worksheet. Coordinates are row and column, counted from 0; cells outside the grid are left alone. All but
// openCanvas ask for screen mode.
#pragma once

#include <cstdint>

namespace vesko {

bool inScreenMode();
bool openCanvas();   // false on a terminal without cells
void closeCanvas();  // back to the worksheet; nothing happens outside screen mode

struct CanvasSize {
    int rows, columns;
};
CanvasSize canvasSize();
void resizeCanvas(CanvasSize size);  // the part of the screen that is drawn on

struct CanvasPlace {
    int y, x;
};
CanvasPlace canvasCursor();
void moveCanvasCursor(CanvasPlace at);

bool setCanvasColour(int pair);  // 0: the terminal's own, 1 to 9
void putCell(CanvasPlace at, uint32_t code);
void drawText(CanvasPlace at, const char *text, uint32_t length);  // UTF-8

// The characters of a frame; 0 stands for the terminal's own line.
struct FrameStyle {
    uint32_t horizontal = 0, vertical = 0, corner = 0;
};
void drawFrame(CanvasPlace first, CanvasPlace last, const FrameStyle &style);
void refreshCanvas();
bool firstCharacter(const char *text, uint32_t length, uint32_t &code);  // of UTF-8 text; false if it is bad

// The next key without waiting: its text in UTF-8, the name of a key that has none ("up", "left", "delete"
// ...), or "" if there is none. Valid until the next call.
const char *canvasKey();

}  // namespace vesko

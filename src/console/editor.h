// The line editor: what each key does to the lines of the command. It knows the worksheet, and no terminal.
#pragma once

#include <cstdint>

namespace vesko {

struct HistoryEntry;

// The codes of keys; all other codes below 127 are characters.
enum Key : int {
    key_ctrl_a = 1,
    key_ctrl_h = 8,
    key_tab = 9,
    key_lf = 10,
    key_cr = 13,
    key_ctrl_s = 19,
    key_rubout = 127,
    key_down = 258,
    key_up = 259,
    key_left = 260,
    key_right = 261,
    key_home = 262,
    key_backspace = 263,
    key_delete = 330,
    key_end = 360,
    key_resize = 410,
};

// Acts on a key with interrupts held. True if that was the Enter that ends the line of input or makes the
// command ready. A key that abandons the parse jumps to the head of the cycle.
bool editKey(int key);

void cmd_enter();                          // Enter at the cursor
void insertVc(char c);                     // a character at the cursor
void updateVB(const HistoryEntry *entry);  // the command becomes the entry's lines; null: an empty one
void beginInput(uint32_t first_column);    // the current line collects input for a program, from that column
void endInput();                           // also when the program is abandoned

}  // namespace vesko

// The bottom layer of the console: two implementations, chosen once at start.
//
// The plain terminal serves pipes and files: commands from standard input line by line, every finished line to
// standard output, no prompt, echo or colour. The full-screen terminal draws the worksheet's window.
#pragma once

#include <cstdint>

namespace vesko {

struct Vsline;

class Terminal {
public:
    virtual ~Terminal() = default;
    virtual uint32_t rows() const = 0;
    virtual uint32_t columns() const = 0;
    // A line will not be appended to any more for now: the next one begins, or input is awaited.
    virtual void lineFinished(const Vsline &line) = 0;
    // Shows the present state of the worksheet.
    virtual void redraw() = 0;
    // Lets the user complete the current command: on return it has a line more to read, or the input has ended.
    // Returns false at the end of the input.
    virtual bool editCommand() = 0;
    // One line of input for a program; false at the end of the input. The text is read off the current line.
    virtual bool readInputLine() = 0;
    virtual void finish() = 0;
};

extern Terminal *terminal;
void initScreen();    // chooses the terminal
void finishScreen();

}  // namespace vesko

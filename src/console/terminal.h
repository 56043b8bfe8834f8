// The bottom layer of the console: two implementations, chosen once at start.
//
// The plain terminal serves pipes and files: commands from standard input line by line, every finished line
// to standard output, no prompt, echo or colour. The full-screen terminal draws the worksheet's window.
#pragma once

#include <cstdint>

namespace vesko {

struct Vsline;

class Terminal {
public:
    virtual uint32_t rows() const = 0;
    virtual uint32_t columns() const = 0;

    // The line is complete: another one begins.
    virtual void lineFinished(const Vsline &line) = 0;

    // Shows the present state of the worksheet.
    virtual void redraw() = 0;

    // Lets the user type until Enter makes the command's lines ready to be read, or ends a line of input;
    // false at the end of the input. Awaits keys: an interrupt, or a command that is read anew, may jump out
    // of it.
    virtual bool editLine() = 0;

    // Before the process ends: nothing may be left unshown, the terminal is as it was found.
    virtual void finish() = 0;

protected:
    ~Terminal() = default;
};

extern Terminal *terminal;        // the one in use
extern Terminal &plain_terminal;  // serves pipes, files and whatever the other cannot drive
Terminal *openFullScreen();       // null if the streams are no terminal, or one that cannot be driven

void initScreen();  // chooses the terminal and settles the worksheet's size
void finishScreen();

}  // namespace vesko

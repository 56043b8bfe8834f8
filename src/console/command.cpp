// The command cycle: bringing up the subsystems, the endless loop, and the ways back to its head.
#include "console/command.h"

#include <csetjmp>
#include <cstdlib>
#include <ctime>

#include "builtins/bfunc.h"
#include "console/canvas.h"
#include "console/editor.h"
#include "console/history.h"
#include "console/message.h"
#include "console/terminal.h"
#include "console/worksheet.h"
#include "engine/exceptions.h"
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "engine/node.h"
#include "frontend/inst.h"
#include "frontend/symbols.h"
#include "frontend/token.h"
#include "numerics/dense.h"
#include "objects/object.h"
#include "textio/file.h"
#include "values/audit.h"
#include "values/containers.h"
#include "values/display.h"
#include "values/fault.h"
#include "values/memory.h"

namespace vesko {

// The return point of the top level.
static sigjmp_buf env;

sigjmp_buf &topLevel() { return env; }

void initialize() {
    growMachineStack();
    initVecLib();
    initmbvec();
    setScreenAttr();  // makes the first line, before the terminal exists
    initScreen();
    initMatLib();
    initObjects();
    initFactors();
    initFuncStack();
    setTopVarList();  // stands before all that interns a name
    setTreeOprnFunc();
    startLexMachine();
    setTokOpr();
    setOprPriority();
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    setBfunc();
    initFiles();
    initDisplayFormat();
}

// What a command left behind. All clean-up stands at the head of the next one, because control can leave any
// function by a jump.
static void cleanUp() {
    holdInterrupt();
    throwVars();
    dumpFuncStack();
    cleanTempMats();
    freeInterrupt();
}

void processCmd() {
    cleanUp();
    auditLinks();
    setCmdBuffStat();
    PcNode *root = buildPcTree();
    writeCmdHist();
    getTreeVal(root);
}

void service() {
    if (sigsetjmp(env, 1) == 0) {
        installIntHandler();  // an interrupt has its return point now
        startFaults();
    } else {
        resetInterruptHold();
        resetExceptions();
        endInput();
        closeCanvas();
        cleanUp();
        freshScr();
    }
    for (;;) {
        processCmd();
        freshScr();
    }
}

void returnToTopLevel() { siglongjmp(env, 1); }

void xAbort(const char *message) {
    if (message) xMesg("%s", message);
    if (anythingIsCaught()) jumpToCatch();
    printErrorMesg();
    returnToTopLevel();
}

void parseError(const char *message) {
    if (message) xMesg("%s", message);
    writeCmdHist();
    returnToTopLevel();
}

void parseRestart() { returnToTopLevel(); }

void leaveProgram(int status) {
    holdInterrupt();
    finishScreen();
    flushFiles();
    std::_Exit(status);
}

}  // namespace vesko

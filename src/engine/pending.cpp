// Handlers of rooms that are not built yet. Each raises an error that says so.
#include "engine/errors.h"
#include "engine/handlers.h"

namespace vesko {

#define PENDING(handler, what) \
    Matrix *handler(PcNode *node) { error_not_built(node, what); }

PENDING(buildConditional, "a conditional class")

PENDING(setProcStates, "an automaton")
PENDING(connectAutomatons, "a connection of automatons")
PENDING(connectAutomatons2way, "a connection of automatons")
PENDING(procRecv, "a port of an automaton")
PENDING(procSend, "a port of an automaton")
PENDING(procStop, "'stop' of an automaton")
PENDING(procYield, "'yield' of an automaton")

#undef PENDING

}  // namespace vesko

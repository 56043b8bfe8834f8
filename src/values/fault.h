// Injected faults, in the checking build only: VESKO_REFUSE=n refuses the n-th request for memory after the
// start, VESKO_INTERRUPT=n interrupts at the n-th node.
#pragma once

namespace vesko {

#ifdef VESKO_CHECK
void startFaults();  // counting begins: called when the start is over
bool refuseInjected();
void countNode();
#else
inline void startFaults() {}
inline bool refuseInjected() { return false; }
inline void countNode() {}
#endif

}  // namespace vesko

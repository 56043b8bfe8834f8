// The audit of links, in the checking build only: after each command every holder is walked, and the links
// found are compared with each record's count.
#pragma once

namespace vesko {

#ifdef VESKO_CHECK
void auditLinks();
#else
inline void auditLinks() {}
#endif

}  // namespace vesko

// The audit of links, in the checking build only: after each command every holder is walked, and the links
// found are compared with each record's count. A room whose records hold values tells how to walk them, with
// a function that calls auditLink for each link.
#pragma once

#include "values/matrix.h"

namespace vesko {

#ifdef VESKO_CHECK
void auditLinks();
void auditLink(const Matrix *held);  // null-safe
// True for the first of several holders that share a record within one audit.
bool auditFirst(const void *shared);
void setPayloadWalk(L2 kind, void (*walk)(const Matrix *holder));
void addHolderWalk(const char *name, void (*walk)());
void tolerateExtraLinks();  // an interrupt happened: it may have lost links, from now on
#else
inline void auditLinks() {}
inline void auditLink(const Matrix *) {}
inline bool auditFirst(const void *) { return false; }
inline void setPayloadWalk(L2, void (*)(const Matrix *)) {}
inline void addHolderWalk(const char *, void (*)()) {}
inline void tolerateExtraLinks() {}
#endif

}  // namespace vesko

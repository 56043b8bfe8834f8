// The sweep: at the head of each command, the temporaries that the last one left behind are released. It
// visits what was handed out, or became a temporary, since the last sweep, and no other record.
#include <cstdlib>

#include "engine/interrupt.h"
#include "values/memory.h"
#include "values/pools.h"
#include "values/release.h"

namespace vesko {

Matrix **sweep_log;
uint32_t sweep_log_size;
uint32_t sweep_epoch = 1;

// Room of the log. Each record stands in it once an epoch, and a second time while a sweep is under way; the
// slack is for interrupts that catch a note half-way.
static uint32_t reserved_records;
constexpr uint32_t log_slack = 64;

static size_t logBytes(uint32_t records) { return (2 * size_t{records} + log_slack) * sizeof(Matrix *); }

void reserveSweepLog(uint32_t n) {
    const size_t old_bytes = sweep_log ? logBytes(reserved_records) : 0;
    sweep_log = static_cast<Matrix **>(m_realloc(sweep_log, old_bytes, logBytes(reserved_records + n)));
    reserved_records += n;
}

void noteTemporary(Matrix *m) { noteForSweep(m); }

// Entries may be added while the log is walked.
template <class F>
static void releaseLogged(F is_wanted) {
    for (uint32_t i = 0; i < sweep_log_size; i++) {
        Matrix *m = sweep_log[i];
        if (!isPoisoned(m) && is_wanted(m)) releaseMat(m);
    }
}

void cleanTempMats() {
    holdInterrupt();
    release_nesting = 0;
    sweep_epoch++;  // what becomes a temporary during the walk is noted again, behind
    releaseLogged([](const Matrix *m) { return m->status == status_temporary; });
    sweep_log_size = 0;
    sweep_epoch++;
    freeInterrupt();
}

void clearStackTempMats(int32_t d) {
    holdInterrupt();
    releaseLogged([d](const Matrix *m) { return m->status == status_temporary && m->depth >= d; });
    freeInterrupt();
}

}  // namespace vesko

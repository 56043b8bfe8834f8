// Time: the calendar, seconds since 1970, differences, and waiting.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <ctime>

#include "builtins/arguments.h"
#include "builtins/waiting.h"
#include "builtins/workers.h"
#include "console/worksheet.h"
#include "engine/errors.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

static timespec now() {
    timespec t;
    clock_gettime(CLOCK_REALTIME, &t);
    return t;
}

constexpr double nanosecond = 1e-9;

static double seconds(const timespec &t) {
    return static_cast<double>(t.tv_sec) + nanosecond * static_cast<double>(t.tv_nsec);
}

// ---- Reading the clock

constexpr uint32_t n_calendar_parts = 6;

// Year, month, day, hour, minute and second of the local time, the second with its fraction.
Matrix *clock_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 0, node, "clock");
    const timespec t = now();
    tm local;
    localtime_r(&t.tv_sec, &local);
    const double parts[n_calendar_parts] = {
        local.tm_year + 1900.0,
        local.tm_mon + 1.0,
        static_cast<double>(local.tm_mday),
        static_cast<double>(local.tm_hour),
        static_cast<double>(local.tm_min),
        local.tm_sec + nanosecond * static_cast<double>(t.tv_nsec),
    };
    Matrix *m = allocRealMat(n_calendar_parts, 1, n_calendar_parts);
    std::copy_n(parts, n_calendar_parts, m->rdata);
    return m;
}

Matrix *time_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 0, node, "time");
    return newRealScalarMat(seconds(now()));
}

// ---- Elapsed time

// Seconds of a time as `time` answers it, or of a date as `clock` does.
static bool readTime(const Matrix *m, double &s) {
    if (m->length == 1) return extract_RS(m, s);
    if (m->length != n_calendar_parts || !hasPlainElements(m->l2type)) return false;
    constexpr int most = 1000000;
    int parts[n_calendar_parts];
    for (uint32_t k = 0; k < n_calendar_parts; k++)
        parts[k] = std::clamp(truncToInt(elementOf(m, k)), -most, most);
    tm date = {};
    date.tm_year = parts[0] - 1900;
    date.tm_mon = parts[1] - 1;
    date.tm_mday = parts[2];
    date.tm_hour = parts[3];
    date.tm_min = parts[4];
    date.tm_isdst = -1;
    const double second = elementOf(m, n_calendar_parts - 1);
    s = static_cast<double>(mktime(&date)) + second;
    return true;
}

Matrix *etime_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 2, node, "etime");
    double t0, t1;
    if (!readTime(args->entries()[0], t0)) error_bf_argk_domain(node, "etime", 0);
    if (!readTime(args->entries()[1], t1)) error_bf_argk_domain(node, "etime", 1);
    return newRealScalarMat(t1 - t0);
}

// ---- Waiting

// What the program has shown can be seen meanwhile; an interrupt ends the wait with the command.
void waitSeconds(double s) {
    constexpr double longest = 1e9;
    showAll();
    timespec left;
    s = std::min(s, longest);
    left.tv_sec = static_cast<time_t>(s);
    constexpr double longest_fraction = 999999999;
    left.tv_nsec = static_cast<long>(std::min((s - std::floor(s)) / nanosecond, longest_fraction));
    while (nanosleep(&left, &left) != 0 && errno == EINTR) continue;
}

bool readDuration(const Matrix *m, double &s) { return extract_RS(m, s) && s >= 0; }

Matrix *sleep_bf(Matrix *args, Matrix **, PcNode *node) {
    double s;
    if (!readDuration(args, s)) refuseArgument(node, "sleep");
    waitSeconds(s);
    return theNullMat();
}

}  // namespace vesko

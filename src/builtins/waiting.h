// Waiting for a time to pass.
#pragma once

#include "values/matrix.h"

namespace vesko {

bool readDuration(const Matrix *m, double &seconds);  // a number of at least 0
void waitSeconds(double seconds);                     // an interrupt jumps out

}  // namespace vesko

// What the release of values shares with the sweep.
#pragma once

#include <cstdint>

namespace vesko {

// How many releases are under way inside each other. A release that jumped away leaves it too high: the sweep
// resets it.
extern uint32_t release_nesting;

}  // namespace vesko

// What the format settings stand for: printf formats and column widths of displayed elements.
#pragma once

#include <cstdint>

namespace vesko {

constexpr uint32_t max_element_text = 128;  // no displayed element is longer

extern char rm_disp_format[16], rs_disp_format[16];
extern uint32_t disp_uw_r;          // columns taken by one real element
constexpr uint32_t disp_uw_c = 27;  // columns taken by one complex element

}  // namespace vesko

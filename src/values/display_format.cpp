// The four settings of the display: format letter and digits, of matrices and of scalars.
#include "values/display_format.h"

#include <cstdio>

#include "values/display.h"

namespace vesko {

char rm_disp_format[16], rs_disp_format[16];
uint32_t disp_uw_r;

static char disp_format, disp_format_scalar;
static uint32_t disp_ndigits, disp_ndigits_scalar;

// Setting the digits of scalars swaps the alignments that setting their letter gives; programs rely on it.
struct Templates {
    const char *general, *exponent;
};
constexpr Templates aligned_left = {"%% -%u.%ug ", "%% %u.%ue "};
constexpr Templates aligned_right = {"%% %u.%ug ", "%% -%u.%ue "};

static void makeFormat(char (&format)[16], const Templates &templates, char letter, uint32_t n) {
    if (letter == 'g')
        snprintf(format, sizeof format, templates.general, n + 6, n);
    else
        snprintf(format, sizeof format, templates.exponent, n + 1, n);
}

static void makeMatrixFormat() {
    makeFormat(rm_disp_format, aligned_left, disp_format, disp_ndigits);
    disp_uw_r = disp_ndigits + (disp_format == 'g' ? 7 : 8);
}

void setDispFormat(char ch) {
    disp_format = ch;
    makeMatrixFormat();
}

void setDispNdigits(uint32_t n) {
    disp_ndigits = n;
    makeMatrixFormat();
}

void setDispFormatScalar(char ch) {
    disp_format_scalar = ch;
    makeFormat(rs_disp_format, aligned_left, ch, disp_ndigits_scalar);
}

void setDispNdigitsScalar(uint32_t n) {
    disp_ndigits_scalar = n;
    makeFormat(rs_disp_format, aligned_right, disp_format_scalar, n);
}

char getDispFormat() { return disp_format; }
char getDispFormatScalar() { return disp_format_scalar; }
uint32_t getDispNdigits() { return disp_ndigits; }
uint32_t getDispNdigitsScalar() { return disp_ndigits_scalar; }

void initDisplayFormat() {
    disp_ndigits = disp_ndigits_scalar = 6;
    setDispFormat('g');
    setDispFormatScalar('g');
}

}  // namespace vesko

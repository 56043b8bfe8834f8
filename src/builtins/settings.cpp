// Domains of the settings: what they accept, they apply.
#include "builtins/workers.h"
#include "multiprec/precision.h"
#include "values/convert.h"
#include "values/display.h"

namespace vesko {

// The letter of a format, in lower case; 0 for anything else.
static char formatLetter(const Matrix *m) {
    if (m->l2type != L2::TX || m->length != 1) return 0;
    switch (m->text()[0]) {
        case 'g':
        case 'G': return 'g';
        case 'e':
        case 'E': return 'e';
        default: return 0;
    }
}

static Matrix *applyFormat(const Matrix *m, void (*apply)(char)) {
    const char letter = formatLetter(m);
    if (letter) apply(letter);
    return truthMat(letter);
}

static Matrix *applyDigits(const Matrix *m, void (*apply)(uint32_t)) {
    constexpr int32_t least = 3, most = 17;
    int32_t n;
    const bool good = extract_integer(m, n) && n >= least && n <= most;
    if (good) apply(static_cast<uint32_t>(n));
    return truthMat(good);
}

Matrix *disp_format_domain_bf(Matrix *args, Matrix **, PcNode *) { return applyFormat(args, setDispFormat); }
Matrix *disp_format_scalar_domain_bf(Matrix *args, Matrix **, PcNode *) {
    return applyFormat(args, setDispFormatScalar);
}
Matrix *disp_ndigits_domain_bf(Matrix *args, Matrix **, PcNode *) {
    return applyDigits(args, setDispNdigits);
}
Matrix *disp_ndigits_scalar_domain_bf(Matrix *args, Matrix **, PcNode *) {
    return applyDigits(args, setDispNdigitsScalar);
}

Matrix *mpf_ndig_domain_bf(Matrix *args, Matrix **, PcNode *) {
    constexpr int32_t least = 64, word = 32;
    int32_t n;
    const bool good = extract_integer(args, n) && n >= least && n % word == 0;
    if (good) set_mpf_ndigits(n);
    return truthMat(good);
}

}  // namespace vesko

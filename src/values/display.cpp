// Display of values. A value is a row of worksheet lines: the first is opened, the further ones follow it
// with no blank line between. What a list holds is indented by one unit a level.
#include "values/display.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "builtins/bfunc.h"
#include "console/command.h"
#include "console/message.h"
#include "console/worksheet.h"
#include "engine/errors.h"
#include "engine/interrupt.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "values/display_format.h"
#include "values/elements.h"

namespace vesko {

// ---- Lines

static uint32_t disp_level;
static bool first_line;  // the next line is the first of the display

static void startLine() {
    if (first_line)
        xOpenLine(disp_level, "%s", "");
    else
        xCloseLine(disp_level, "%s", "");
    first_line = false;
}

// The sign of a NaN is an accident of the processor: it is not shown.
static double shown(double x) { return std::isnan(x) ? std::numeric_limits<double>::quiet_NaN() : x; }
template <class T>
static T shown(T x) {
    return x;
}

template <class... Args>
static void addText(const char *format, Args... args) {
    char text[max_element_text];
    const int n = snprintf(text, sizeof text, format, shown(args)...);
    xPutText(text, std::min<uint32_t>(n, sizeof text - 1));
}

static void addString(const Matrix *s) { xPutText(s->text(), strnlen(s->text(), s->length)); }

static void showLine(const char *text) {
    startLine();
    xPutText(text, strlen(text));
}

// ---- Matrices in pages

// Shows the rows of a matrix in pages of as many columns as fit; showElement(i, one_page) adds element i.
template <class F>
static void showPages(uint32_t rows, uint32_t cols, uint32_t page, F showElement) {
    if (page == 0) page = 1;
    const bool one_page = cols <= page;
    for (uint32_t from = 0; from < cols; from += page) {
        const uint32_t to = std::min(cols, from + page);
        if (!one_page) {
            startLine();
            addText("Column %u through column %u", from + 1, to);
        }
        for (uint32_t i = 0; i < rows; i++) {
            startLine();
            for (uint32_t j = from; j < to; j++) showElement(size_t{i} * cols + j, one_page);
        }
    }
}

static void dispInt(const Matrix *m) {
    const int32_t *data = m->ints();
    showPages(m->nrows, m->ncols, getScreenWidth() / 12,
              [data](size_t i, bool one_page) { addText(one_page ? "% 11d " : "% 11d  ", data[i]); });
}

static void dispRM(const double *data, uint32_t rows, uint32_t cols) {
    showPages(rows, cols, getScreenWidth() / disp_uw_r,
              [data](size_t i, bool) { addText(rm_disp_format, data[i]); });
}

static void addComplex(double re, double im) {
    char text[max_element_text];
    const int width = snprintf(text, sizeof text, "% 12.6g%-+.6gi ", shown(re), shown(im));
    xPutText(text, width);
    addText("%*c", std::max<int>(1, disp_uw_c - width), ' ');
}

static void dispCM(const Matrix *m) {
    const double *re = m->re()->rdata, *im = m->im()->rdata;
    showPages(m->nrows, m->ncols, getScreenWidth() / disp_uw_c,
              [re, im](size_t i, bool) { addComplex(re[i], im[i]); });
}

static void dispByte(const Matrix *m) {
    const uint8_t *data = m->bytes();
    showPages(m->nrows, m->ncols, m->ncols, [data](size_t i, bool) { addText(" %d", data[i]); });
}

// Slices on the first dimension; only three dimensions have a form.
static void dispRmdm(const Matrix *m) {
    const auto *extents = static_cast<const Vector *>(m->vdata);
    if (extents->size != 3) return showLine("multidimensional matrix");
    const uint32_t slices = extents->numberAt(0), rows = extents->numberAt(1), cols = extents->numberAt(2);
    startLine();
    addText("multidimensional real matrix with dims %u, %u, %u", slices, rows, cols);
    for (uint32_t k = 0; k < slices; k++) {
        startLine();
        addText("[%u, :, :]", k + 1);
        dispRM(m->rdata + size_t{k} * rows * cols, rows, cols);
    }
}

// ---- Even spaced vectors: never expanded in memory

static void showRangeRow(const Matrix *m, uint32_t row, const char *format) {
    startLine();
    const uint32_t from = row * m->ncols;
    for (uint32_t k = from; k < from + m->ncols; k++) addText(format, elementOf(m, k));
}

constexpr uint32_t range_rows_whole = 30, range_rows_head = 27, range_rows_tail = 3;

// The tail of a long range begins at length - 3, counted in rows: so it shows for one column only, and the
// rows of a wider one end at the dots. Programs' output relies on it.
static void dispRng(const Matrix *m) {
    if (m->nrows == 1) return showRangeRow(m, 0, "%-9.3g  ");
    const bool whole = m->nrows <= range_rows_whole;
    const uint32_t head = whole ? m->nrows : range_rows_head;
    for (uint32_t i = 0; i < head; i++) showRangeRow(m, i, "%-9.3g");
    if (whole) return;
    showLine("...");
    for (uint32_t i = m->length - range_rows_tail; i < m->nrows; i++) showRangeRow(m, i, "%-9.3g");
}

// ---- Scalars and intervals

static void dispRS(double x) {
    startLine();
    addText(rs_disp_format, x);
}

static void dispCS(double re, double im) {
    startLine();
    addText("%.10g %c %.10gi", re, im < 0 ? '-' : '+', std::fabs(im));
}

static void dispTX(const Matrix *s) {
    startLine();
    addString(s);
}

static void dispItv(const Matrix *m) {
    for (uint32_t i = 0; i < m->nrows; i++) {
        const double *group = m->rdata + size_t{i} * 4;
        startLine();
        addText("%c%g, %g%c ", group[2] == 1.0 ? '[' : '(', group[0], group[1], group[3] == 1.0 ? ']' : ')');
    }
}

// ---- Lists and sets

constexpr int32_t longest_one_line_list = 128;
constexpr int32_t number_in_list_width = 4;

// Width of a list on one line, or -1 if its entries do not stand on one.
static int32_t countDispLen(const Matrix *m) {
    if (!isList(m->l2type) || m->length > longest_one_line_list) return -1;
    int32_t width = 0;
    for (uint32_t i = 0; i < m->length && width <= longest_one_line_list; i++) {
        const Matrix *entry = m->entries()[i];
        switch (entry->l2type) {
            case L2::RS:
            case L2::IS: width += number_in_list_width; break;
            case L2::TX: width += std::min<uint32_t>(entry->length, longest_one_line_list) + 2; break;
            default: return -1;
        }
    }
    return width;
}

static void addListEntryText(const Matrix *entry) {
    switch (entry->l2type) {
        case L2::RS: return addText("%g", entry->rdata[0]);
        case L2::IS: return addText("%d", entry->ints()[0]);
        case L2::TX: return addString(entry);
        default: xAbort("type must be rs or tx or is; this shouldn't happen");
    }
}

static void showListOnOneLine(const Matrix *m) {
    showLine("(");
    for (uint32_t i = 0; i < m->length; i++) {
        if (i) xPutText(", ", 2);
        addListEntryText(m->entries()[i]);
    }
    xPutText(")", 1);
}

static void showValue(Matrix *m);

// Every line of an entry is indented by its level, so the depth is limited here, not by the machine stack.
constexpr uint32_t deepest_level = 1000;

template <class F>
static void showEntries(uint32_t n, F entryAt) {
    if (disp_level == deepest_level) error_recursion_too_deep();
    showLine("(");
    disp_level++;
    for (uint32_t i = 0; i < n; i++) showValue(entryAt(i));
    disp_level--;
    showLine(")");
}

static void dispList(const Matrix *m) {
    const int32_t width = countDispLen(m);
    if (width < 0 || width > longest_one_line_list)
        showEntries(m->length, [m](uint32_t i) { return m->entries()[i]; });
    else
        showListOnOneLine(m);
}

// Always the long form, and with parentheses: a set is not told from a list.
static void dispSet(const Matrix *m) {
    const xset *set = m->table();
    showEntries(set->count(), [set](uint32_t i) { return setMemberAt(set, i); });
}

// ---- Any value

static void dispClass(const Matrix *m) {
    startLine();
    xPutText("class: ", 7);
    addString(classOf(m)->head->matAt(Xclass::title_entry));
}

static void showConverted(const Matrix *m) {
    Matrix *dense = convToDb(m);
    dispRM(dense->rdata, dense->nrows, dense->ncols);
    releaseMat(dense);
}

static void showValue(Matrix *m) {
    guardStack();
    switch (m->l2type) {
        case L2::IM:
        case L2::IS: return dispInt(m);
        case L2::RNG: return dispRng(m);
        case L2::RM:
        case L2::UPPER:
        case L2::LOWER:
        case L2::SYMM:
        case L2::PM: return dispRM(m->rdata, m->nrows, m->ncols);
        case L2::RS: return dispRS(m->rdata[0]);
        case L2::BY:
        case L2::BI: return dispByte(m);
        case L2::BAND:
        case L2::SPARSE: return showConverted(m);
        case L2::BIGINT: error_not_built(nullptr, "big integers");
        case L2::MPF: error_not_built(nullptr, "multi-precision floats");
        case L2::CS: return dispCS(m->re()->rdata[0], m->im()->rdata[0]);
        case L2::CM: return dispCM(m);
        case L2::LS:
        case L2::VL: return dispList(m);
        case L2::UF: return showLine("function");
        case L2::BF: return showLine(getSymbolName(m->builtin()->name));
        case L2::OBJ: return showLine("object");
        case L2::RMDM: return dispRmdm(m);
        case L2::CMDM: return showLine("complex multidimensional matrix");
        case L2::TX: return dispTX(m);
        case L2::ITV: return dispItv(m);
        case L2::PTR: return showLine("pointer");
        case L2::FSET: return dispSet(m);
        case L2::NUL: return m == theEmptyMat() ? showLine("[]") : void();
        case L2::CLASS: return dispClass(m);
        case L2::AUTOMATON: return showLine("automaton");
        case L2::COND: return showLine("conditional class");
        case L2::VARADDR: return showLine("variable reference");
        case L2::DNE: return showLine("DNE");
        case L2::FILEH: return showLine("file");
        default: return;  // kinds that show nothing
    }
}

Matrix *dispMat(Matrix *m) {
    if (cwmode_nodisplay()) return theNullMat();
    disp_level = 0;
    first_line = true;
    showValue(m);
    return m;
}

}  // namespace vesko

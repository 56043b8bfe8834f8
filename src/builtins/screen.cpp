// Drawing on the terminal. These built-ins raise no errors: they answer 0, or -1 for wrong arguments, or -2
// outside screen mode; arguments are tested first.
#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "console/canvas.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

namespace {

constexpr int done = 0, wrong_arguments = -1, not_in_screen_mode = -2;

Matrix *code(int n) { return newIntScalarMat(n); }

// Runs a routine if the arguments were right and the mode is on.
template <class Routine>
Matrix *onScreen(bool arguments_are_right, Routine routine) {
    if (!arguments_are_right) return code(wrong_arguments);
    if (!inScreenMode()) return code(not_in_screen_mode);
    routine();
    return code(done);
}

template <class Routine>
Matrix *answerOnScreen(const Matrix *args, Routine routine) {
    if (argCount(args) != 0) return code(wrong_arguments);
    return inScreenMode() ? routine() : code(not_in_screen_mode);
}

Matrix *pairMat(int y, int x) { return newCounts({static_cast<uint32_t>(y), static_cast<uint32_t>(x)}); }

// ---- Reading arguments

bool readInt(Matrix *args, uint32_t k, int &n) {
    int32_t value;
    if (!extract_integer(argAt(args, k), value)) return false;
    n = value;
    return true;
}

bool readPlace(Matrix *args, uint32_t k, CanvasPlace &at) {
    return readInt(args, k, at.y) && readInt(args, k + 1, at.x);
}

// A character: the first one of a text, or its code.
bool readCell(const Matrix *m, uint32_t &c) {
    int32_t n;
    if (m->l2type == L2::TX && m->length > 0) return firstCharacter(m->text(), m->length, c);
    if (!extract_integer(m, n) || n < ' ') return false;
    c = static_cast<uint32_t>(n);
    return true;
}

// The places of two vectors of equal length, as (ys[k], xs[k]).
struct Places {
    Matrix *ys, *xs;

    bool read(Matrix *args) {
        ys = argAt(args, 0);
        xs = argAt(args, 1);
        return hasPlainElements(ys->l2type) && hasPlainElements(xs->l2type) && ys->length == xs->length;
    }
    CanvasPlace at(uint32_t k) const { return {truncToInt(elementOf(ys, k)), truncToInt(elementOf(xs, k))}; }
};

// A number chooses lines (0) or ASCII characters (1); a text gives one character for all, or those of the
// horizontal and vertical sides and the corners.
bool readStyle(const Matrix *m, FrameStyle &style) {
    int32_t n;
    if (m->l2type == L2::TX && (m->length == 1 || m->length == 3)) {
        const auto *c = reinterpret_cast<const unsigned char *>(m->text());
        style = m->length == 1 ? FrameStyle{c[0], c[0], c[0]} : FrameStyle{c[0], c[1], c[2]};
        return true;
    }
    if (!extract_integer(m, n) || n < 0 || n > 1) return false;
    if (n == 1) style = {'-', '|', '+'};
    return true;
}

}  // namespace

// ---- The mode

Matrix *screen_init_bf(Matrix *args, Matrix **, PcNode *) {
    if (argCount(args) != 0) return code(wrong_arguments);
    return code(openCanvas() ? done : not_in_screen_mode);
}

Matrix *screen_end_bf(Matrix *args, Matrix **, PcNode *) {
    return onScreen(argCount(args) == 0, [] { closeCanvas(); });
}

Matrix *screen_size_bf(Matrix *args, Matrix **, PcNode *) {
    return answerOnScreen(args, [] { return pairMat(canvasSize().rows, canvasSize().columns); });
}

Matrix *screen_resize_bf(Matrix *args, Matrix **, PcNode *) {
    CanvasSize size;
    const bool right = argCount(args) == 2 && readInt(args, 0, size.rows) && readInt(args, 1, size.columns) &&
                       size.rows > 0 && size.columns > 0;
    return onScreen(right, [&] { resizeCanvas(size); });
}

// ---- Keys

Matrix *screen_getch_bf(Matrix *args, Matrix **, PcNode *) {
    return answerOnScreen(args, [] { return newStrMatCopy(canvasKey()); });
}

// ---- The cursor and the colour

Matrix *screen_moveto_bf(Matrix *args, Matrix **, PcNode *) {
    CanvasPlace at;
    return onScreen(argCount(args) == 2 && readPlace(args, 0, at), [&] { moveCanvasCursor(at); });
}

Matrix *screen_getyx_bf(Matrix *args, Matrix **, PcNode *) {
    return answerOnScreen(args, [] { return pairMat(canvasCursor().y, canvasCursor().x); });
}

Matrix *screen_setcolor_bf(Matrix *args, Matrix **, PcNode *) {
    int pair;
    if (argCount(args) != 1 || !readInt(args, 0, pair)) return code(wrong_arguments);
    if (!inScreenMode()) return code(not_in_screen_mode);
    return code(setCanvasColour(pair) ? done : wrong_arguments);
}

// ---- Drawing

Matrix *screen_erase_bf(Matrix *args, Matrix **, PcNode *) {
    Places places;
    return onScreen(argCount(args) == 2 && places.read(args), [&] {
        for (uint32_t k = 0; k < places.ys->length; ++k) putCell(places.at(k), ' ');
        refreshCanvas();
    });
}

// One character for all places, or a vector of codes.
Matrix *screen_paint_bf(Matrix *args, Matrix **, PcNode *) {
    Places places;
    if (argCount(args) != 3 || !places.read(args)) return code(wrong_arguments);
    const Matrix *cells = argAt(args, 2);
    uint32_t c;
    const bool one = readCell(cells, c);
    const bool many = !one && hasPlainElements(cells->l2type) && cells->length == places.ys->length;
    return onScreen(one || many, [&] {
        for (uint32_t k = 0; k < places.ys->length; ++k)
            putCell(places.at(k), one ? c : static_cast<uint32_t>(truncToInt(elementOf(cells, k))));
    });
}

Matrix *screen_putch_bf(Matrix *args, Matrix **, PcNode *) {
    CanvasPlace at;
    uint32_t c;
    return onScreen(argCount(args) == 3 && readPlace(args, 0, at) && readCell(argAt(args, 2), c),
                    [&] { putCell(at, c); });
}

Matrix *screen_drawtext_bf(Matrix *args, Matrix **, PcNode *) {
    CanvasPlace at;
    const bool right = argCount(args) == 3 && readPlace(args, 0, at) && argAt(args, 2)->l2type == L2::TX;
    return onScreen(right, [&] { drawText(at, argAt(args, 2)->text(), argAt(args, 2)->length); });
}

Matrix *screen_drawbox_bf(Matrix *args, Matrix **, PcNode *) {
    const uint32_t n = argCount(args);
    CanvasPlace first, last;
    FrameStyle style;
    const bool right = (n == 4 || n == 5) && readPlace(args, 0, first) && readPlace(args, 2, last) &&
                       (n == 4 || readStyle(argAt(args, 4), style));
    return onScreen(right, [&] { drawFrame(first, last, style); });
}

Matrix *screen_refresh_bf(Matrix *args, Matrix **, PcNode *) {
    return onScreen(argCount(args) == 0, [] { refreshCanvas(); });
}

}  // namespace vesko

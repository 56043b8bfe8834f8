// Slots of formats, and printing through them. The conversion itself is the standard library's: it gets one
// slot at a time, with one argument of the type that the slot names.
#include "textio/format.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "engine/errors.h"
#include "engine/interrupt.h"
#include "operators/text_builder.h"
#include "values/convert.h"

namespace vesko {

// ---- Finding slots

size_t findSlot(std::string_view format, size_t from, PercentPairs pairs) {
    for (size_t i = from; (i = format.find('%', i)) != no_slot; i++) {
        const bool doubled = i + 1 < format.size() && format[i + 1] == '%';
        if (doubled && pairs == PercentPairs::Slot) return i;
        if (doubled)
            i++;
        else if (i == from || format[i - 1] != '\\')
            return i;
    }
    return no_slot;
}

uint32_t countPercent(std::string_view format, PercentPairs pairs) {
    uint32_t n = 0;
    size_t i = findSlot(format, 0, pairs);
    for (; i != no_slot; n++) {
        const bool doubled = i + 1 < format.size() && format[i + 1] == '%';
        i = findSlot(format, i + (doubled ? 2 : 1), pairs);
    }
    return n;
}

namespace {

// ---- The slots of printing

enum class SlotClass { Integer, Real, Text, Character };

constexpr size_t longest_slot = 15;         // with the percent sign and the conversion
constexpr uint32_t widest_slot = 1u << 20;  // and most precise: what goes beyond is refused

struct PrintSlot {
    char format[longest_slot + 1];  // as the library gets it: without a length that its argument hasn't
    size_t length;                  // in the format
    SlotClass kind;
    char conversion;
    bool is_bare;   // no flags, no width and no length that counts
    int precision;  // no_precision if none is given
    bool too_wide;
};
constexpr int no_precision = -1;

// Each flag once.
bool passFlags(SlotReader &reader) {
    uint32_t seen = 0;
    for (char flag = reader.next(); reader.pass('-', '+', ' ', '#'); flag = reader.next()) {
        const uint32_t bit = 1u << (flag % 32);
        if (seen & bit) return false;
        seen |= bit;
    }
    return true;
}

bool passConversion(SlotReader &reader, SlotClass &kind) {
    if (reader.pass('d', 'i', 'o', 'u', 'x', 'X'))
        kind = SlotClass::Integer;
    else if (reader.pass('f', 'e', 'g', 'E', 'G'))
        kind = SlotClass::Real;
    else if (reader.pass('s'))
        kind = SlotClass::Text;
    else if (reader.pass('c'))
        kind = SlotClass::Character;
    else
        return false;
    return true;
}

// The slot that begins at the percent sign; false if it is none.
bool readSlot(std::string_view format, size_t from, PrintSlot &slot) {
    SlotReader reader(format, from + 1);
    if (!passFlags(reader)) return false;
    reader.pass('0');
    const uint32_t width = reader.nextIs('0') ? 0 : reader.passNumber();
    const bool is_plain = reader.at() == from + 1;
    const bool has_precision = reader.pass('.');
    const uint32_t precision = has_precision ? reader.passNumber() : 0;
    slot.too_wide = width > widest_slot || precision > widest_slot;
    slot.precision = has_precision ? static_cast<int>(precision) : no_precision;
    size_t kept = reader.at() - from;
    const bool is_short = reader.nextIs('h');
    slot.is_bare = is_plain && !is_short;
    reader.pass('l', 'h', 'L');
    slot.conversion = reader.next();
    if (!passConversion(reader, slot.kind)) return false;
    slot.length = reader.at() - from;
    if (slot.length > longest_slot) return false;
    format.copy(slot.format, kept, from);
    if (is_short && slot.kind == SlotClass::Integer) slot.format[kept++] = 'h';
    slot.format[kept++] = slot.conversion;
    slot.format[kept] = '\0';
    return true;
}

// ---- The items

bool isPrintedNumber(const Matrix *m) {
    switch (m->l2type) {
        case L2::IS:
        case L2::RS: return true;
        case L2::BY:
        case L2::BI:
        case L2::BIGINT:
        case L2::MPF: return m->length == 1;
        default: return false;
    }
}

// These are false if the item has none of what the slot takes.
bool integerOf(const Matrix *m, int32_t &n) {
    if (!isPrintedNumber(m)) return false;
    if (m->l2type == L2::RS) {
        n = truncToInt(m->rdata[0]);
        return true;
    }
    Matrix *converted = convToIntMat(m);
    n = converted->ints()[0];
    releaseMat(converted);
    return true;
}

bool characterOf(const Matrix *m, int32_t &c) {
    if (m->l2type != L2::TX) return integerOf(m, c);
    c = m->bytes()[0];
    return true;
}

// The sign of a NaN is an accident of the processor: it is not shown.
bool realOf(const Matrix *m, double &x) {
    if (!isPrintedNumber(m) || !extract_RS(m, x)) return false;
    if (std::isnan(x)) x = std::numeric_limits<double>::quiet_NaN();
    return true;
}

// ---- Printing

constexpr size_t small_text = 512;

// The quick ways of the library, with the digits of the general one: these are 0 for slots that have none.
int convertQuickly(char *to, size_t room, const PrintSlot &slot, double x) {
    std::chars_format format;
    switch (slot.conversion) {
        case 'f': format = std::chars_format::fixed; break;
        case 'e': format = std::chars_format::scientific; break;
        case 'g': format = std::chars_format::general; break;
        default: return 0;
    }
    constexpr int usual_precision = 6;
    const int precision = slot.precision == no_precision ? usual_precision : slot.precision;
    const auto done = std::to_chars(to, to + room, x, format, precision);
    return done.ec == std::errc() ? static_cast<int>(done.ptr - to) : 0;
}
int convertQuickly(char *to, size_t room, const PrintSlot &slot, int32_t n) {
    if (slot.precision != no_precision || (slot.conversion != 'd' && slot.conversion != 'i')) return 0;
    return static_cast<int>(std::to_chars(to, to + room, n).ptr - to);
}
int convertQuickly(char *, size_t, const PrintSlot &, const char *) { return 0; }

template <class T>
int convert(char *to, size_t room, const PrintSlot &slot, T value) {
    if (slot.too_wide) return -1;
    holdInterrupt();
    int n = slot.is_bare ? convertQuickly(to, room, slot, value) : 0;
    if (n == 0) n = std::snprintf(to, room, slot.format, value);
    freeInterrupt();
    return n;
}

template <class T>
void printValue(TextSink &sink, const PrintSlot &slot, T value, PcNode *node) {
    char text[small_text];
    const int n = convert(text, sizeof text, slot, value);
    if (n < 0) error_printf(node);
    const auto length = static_cast<uint32_t>(n);
    if (length < sizeof text) return sink.add({text, length});
    Matrix *big = newStrMat(checkedLength(uint64_t{length} + 1, 1));
    convert(big->text(), size_t{length} + 1, slot, value);
    sink.add({big->text(), length});
    releaseMat(big);
}

void printItem(TextSink &sink, const PrintSlot &slot, const Matrix *item, PcNode *node) {
    int32_t n;
    double x;
    switch (slot.kind) {
        case SlotClass::Integer:
            if (integerOf(item, n)) return printValue(sink, slot, n, node);
            break;
        case SlotClass::Character:
            if (characterOf(item, n)) return printValue(sink, slot, n, node);
            break;
        case SlotClass::Real:
            if (realOf(item, x)) return printValue(sink, slot, x, node);
            break;
        case SlotClass::Text:
            if (item->l2type == L2::TX) return printValue<const char *>(sink, slot, item->text(), node);
            break;
    }
    error_print_data(node);
}

// The text between slots.
void printLiteral(TextSink &sink, std::string_view text) {
    for (size_t pair; (pair = text.find("%%")) != std::string_view::npos; text.remove_prefix(pair + 2))
        sink.add(text.substr(0, pair + 1));
    sink.add(text);
}

}  // namespace

void printItems(TextSink &sink, const Matrix *format, Matrix *const *items, uint32_t n, PcNode *node) {
    if (format->l2type != L2::TX) error_print_format_mat(node);
    const std::string_view text = textOf(format);
    const uint32_t slots = countPercent(text, PercentPairs::Literal);
    if (slots != n) error_bf_nargs_npercent(node, static_cast<int32_t>(slots), static_cast<int32_t>(n + 1));
    size_t from = 0;
    for (uint32_t k = 0; k < n; k++) {
        const size_t at = findSlot(text, from, PercentPairs::Literal);
        printLiteral(sink, text.substr(from, at - from));
        PrintSlot slot;
        if (!readSlot(text, at, slot)) error_print_format(node, text.data());
        printItem(sink, slot, items[k], node);
        from = at + slot.length;
    }
    printLiteral(sink, text.substr(from));
}

}  // namespace vesko

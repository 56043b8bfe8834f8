// Formatted input from texts and files. The conversion itself is the standard library's: it gets one slot at
// a time, between two counts of the characters read so far.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "engine/interrupt.h"
#include "members/methods.h"
#include "operators/text_builder.h"
#include "textio/file.h"
#include "textio/format.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/memory.h"

namespace vesko {

namespace {

// ---- Slots

enum class ScanKind { Integer, Unsigned, Real, Word, Characters, Set, Percent };

struct ScanSlot {
    ScanKind kind;
    bool assigns;
    uint32_t width;  // at most; 0 where it doesn't matter
    size_t end;      // behind it, in the format
};

bool isText(ScanKind kind) {
    return kind == ScanKind::Word || kind == ScanKind::Characters || kind == ScanKind::Set;
}

// What the library gets for one slot: the text before it, and the slot between two %n.
class WorkFormat {
public:
    explicit WorkFormat(size_t format_length) : mat_(newStrMat(checkedLength(2 * format_length + 32, 1))) {}
    void clear() { length_ = 0; }
    void add(std::string_view text) {
        std::memcpy(mat_->text() + length_, text.data(), text.size());
        length_ += text.size();
        mat_->text()[length_] = '\0';
    }
    void addNumber(uint32_t n) {
        char digits[16];
        add({digits, static_cast<size_t>(std::snprintf(digits, sizeof digits, "%u", n))});
    }
    void addLiteral(std::string_view text) {
        for (const char &c : text) add(c == '%' ? std::string_view("%%") : std::string_view(&c, 1));
    }
    const char *text() const { return mat_->text(); }
    void release() { releaseMat(mat_); }

private:
    Matrix *mat_;
    size_t length_ = 0;
};

bool passConversion(SlotReader &reader, ScanKind &kind) {
    if (reader.pass('d', 'i'))
        kind = ScanKind::Integer;
    else if (reader.pass('o', 'u', 'x'))
        kind = ScanKind::Unsigned;
    else if (reader.pass('e', 'f', 'g'))
        kind = ScanKind::Real;
    else if (reader.pass('s'))
        kind = ScanKind::Word;
    else if (reader.pass('c'))
        kind = ScanKind::Characters;
    else if (reader.pass('['))
        kind = ScanKind::Set;
    else
        return false;
    return true;
}

// The characters of a set, behind its bracket. A closing bracket at the head is one of them.
bool passSet(SlotReader &reader) {
    reader.pass('^');
    reader.pass(']');
    return reader.passBehind(']');
}

constexpr uint32_t longest_scanned_text = 1u << 27;  // a text that is no shorter is refused

// The width of a slot that names none.
uint32_t widthOf(ScanKind kind) {
    if (kind == ScanKind::Characters) return 1;
    return isText(kind) ? longest_scanned_text : 0;
}

// Numbers are full-width; the library finds the room for words and sets.
const char *lengthOf(ScanKind kind) {
    if (kind == ScanKind::Characters) return "";
    return isText(kind) ? "m" : "l";
}

// Reads the slot that begins at the percent sign, and adds it to the work format. False if it is none.
bool retrieve_i_fmt(std::string_view format, size_t at, WorkFormat &work, ScanSlot &slot) {
    SlotReader reader(format, at + 1);
    slot = {ScanKind::Percent, true, 0, at + 2};
    if (reader.pass('%')) {
        work.add("%n%%%n");
        return true;
    }
    slot.assigns = !reader.pass('*');
    slot.width = std::min(reader.passNumber(), longest_scanned_text);
    const bool sized = reader.pass('h', 'l', 'L');
    const size_t conversion = reader.at();
    if (!passConversion(reader, slot.kind) || (sized && isText(slot.kind))) return false;
    if (slot.kind == ScanKind::Set && !passSet(reader)) return false;
    slot.end = reader.at();
    if (slot.width == 0) slot.width = widthOf(slot.kind);

    // Blanks before a word are not counted as its own.
    work.add(slot.kind == ScanKind::Word ? " %n%" : "%n%");
    if (!slot.assigns) work.add("*");
    if (slot.width > 0) work.addNumber(slot.width);
    if (slot.assigns) work.add(lengthOf(slot.kind));
    work.add(format.substr(conversion, slot.end - conversion));
    work.add("%n");
    return true;
}

// ---- Where the characters come from

struct Extent {
    int begin = -1, end = -1;  // of what the slot took; the end is -1 if the slot failed
};

struct TextSource {
    const char *at;
    static constexpr auto refuseFormat = error_scanf_format;

    bool await(PcNode *) { return true; }
    template <class... To>
    int scan(const char *format, Extent &extent, To... to) {
        holdInterrupt();
        const int assigned = std::sscanf(at, format, &extent.begin, to..., &extent.end);
        freeInterrupt();
        at += std::max(extent.end, 0);
        return assigned;
    }
};

struct FileSource {
    FileRecord *file;
    static constexpr auto refuseFormat = error_print_format;

    bool await(PcNode *node) { return awaitInput(file, node); }
    template <class... To>
    int scan(const char *format, Extent &extent, To... to) {
        holdInterrupt();
        const int assigned = std::fscanf(file->stream, format, &extent.begin, to..., &extent.end);
        freeInterrupt();
        return assigned;
    }
};

// ---- Items: null if the slot failed

// Memory of the library, which an interrupt may leave here.
char *scanned_text;

void freeScannedText() {
    holdInterrupt();
    std::free(scanned_text);
    scanned_text = nullptr;
    freeInterrupt();
}

Matrix *newScannedText(const char *text, const Extent &extent) {
    const auto length = static_cast<uint32_t>(extent.end - extent.begin);
    if (length >= longest_scanned_text) refuseMemory(length);
    return newStrMatCopyN(text, length);
}

template <class Source>
Matrix *scanText(Source &source, const char *format) {
    freeScannedText();
    Extent extent;
    if (source.scan(format, extent, &scanned_text) != 1) return nullptr;
    Matrix *text = newScannedText(scanned_text, extent);
    freeScannedText();
    return text;
}

template <class Source>
Matrix *scanCharacters(Source &source, const char *format, uint32_t width) {
    Extent extent;
    Matrix *room = newStrMat(width + 1);
    const bool scanned = source.scan(format, extent, room->text()) == 1;
    Matrix *text = scanned ? newScannedText(room->text(), extent) : nullptr;
    releaseMat(room);
    return text;
}

template <class T, class Source, class Make>
Matrix *scanNumber(Source &source, const char *format, Make make) {
    Extent extent;
    T number;
    return source.scan(format, extent, &number) == 1 ? make(number) : nullptr;
}

// Integers have 32 bits: what lies beyond is the largest, or the smallest, of them; octal, hexadecimal and
// unsigned numbers fill all the bits.
Matrix *newInteger(long n) { return newIntScalarMat(truncToInt(static_cast<double>(n))); }
Matrix *newUnsigned(unsigned long n) {
    return newIntScalarMat(static_cast<int32_t>(std::min<unsigned long>(n, UINT32_MAX)));
}

template <class Source>
Matrix *scanItem(Source &source, const char *format, const ScanSlot &slot) {
    switch (slot.kind) {
        case ScanKind::Integer: return scanNumber<long>(source, format, newInteger);
        case ScanKind::Unsigned: return scanNumber<unsigned long>(source, format, newUnsigned);
        case ScanKind::Real: return scanNumber<double>(source, format, newRealScalarMat);
        case ScanKind::Percent: {
            Extent extent;
            source.scan(format, extent);
            return extent.end >= 0 ? newStrMatCopy("%") : nullptr;
        }
        case ScanKind::Characters: return scanCharacters(source, format, slot.width);
        default: return scanText(source, format);
    }
}

template <class Source>
void scanNothing(Source &source, const char *format) {
    Extent extent;
    source.scan(format, extent);
}

// ---- Scanning

// One item as itself, any other number of them as a list.
Matrix *itemOrList(Matrix *items) {
    if (items->length != 1) return items;
    Matrix *item = keepResult(items->entries()[0]);
    releaseMat(items);
    return passResult(item);
}

// The items up to the first slot that fails; a slot that assigns nothing may fail.
template <class Source>
Matrix *scanItems(Source source, const Matrix *format, PcNode *node) {
    const std::string_view text = textOf(format);
    const uint32_t slots = countPercent(text, PercentPairs::Slot);
    if (slots == 0) return theEmptyMat();
    WorkFormat work(text.size());
    Matrix *items = newVListMat(slots);
    size_t from = 0;
    for (size_t at; (at = findSlot(text, from, PercentPairs::Slot)) != no_slot && source.await(node);) {
        ScanSlot slot;
        work.clear();
        work.addLiteral(text.substr(from, at - from));
        if (!retrieve_i_fmt(text, at, work, slot)) Source::refuseFormat(node, text.data());
        from = slot.end;
        if (!slot.assigns) {
            scanNothing(source, work.text());
            continue;
        }
        Matrix *item = scanItem(source, work.text(), slot);
        if (!item) break;
        addListEntry(items, item);
    }
    work.release();
    return itemOrList(items);
}

Matrix *scanFile(const Matrix *file, const Matrix *format, PcNode *node) {
    demandReadable(fileOf(file), node);
    return scanItems(FileSource{fileOf(file)}, format, node);
}

}  // namespace

Matrix *sscanf_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 2, node, "sscanf");
    for (uint32_t k = 0; k < 2; k++) demandKind(args, k, L2::TX, node, "sscanf");
    return scanItems(TextSource{argAt(args, 0)->text()}, argAt(args, 1), node);
}

// Its count of arguments is told under the name of sscanf.
Matrix *fscanf_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 2, node, "sscanf");
    demandKind(args, 0, L2::FILEH, node, "fscanf");
    demandKind(args, 1, L2::TX, node, "fscanf");
    return scanFile(argAt(args, 0), argAt(args, 1), node);
}

Matrix *method_scanf(MethodCall &call) {
    demandReadable(fileOf(call.owner), call.node);
    if (call.arg(0)->l2type != L2::TX) error_scanf_format_mat(call.node);
    return scanFile(call.owner, call.arg(0), call.node);
}

}  // namespace vesko

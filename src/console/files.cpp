// Source files through libpaths, help texts, and lines of text files.
#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "console/command.h"
#include "console/message.h"
#include "engine/interrupt.h"
#include "frontend/symbols.h"
#include "values/matrix.h"
#include "values/memory.h"

namespace vesko {

// A folder opens for reading but has no text: it counts as not found.
std::FILE *openGFile(const char *path) {
    holdInterrupt();
    std::FILE *file = std::fopen(path, "rb");
    struct stat info;
    if (file && (fstat(fileno(file), &info) != 0 || S_ISDIR(info.st_mode))) {
        std::fclose(file);
        file = nullptr;
    }
    freeInterrupt();
    return file;
}

// Opens folder, a slash unless the folder ends in one, name and suffix.
static std::FILE *openInFolder(const Matrix *folder, const char *name, const char *suffix) {
    const char *path = folder->text();
    bool slash = folder->length == 0 || path[folder->length - 1] != '/';
    size_t size = folder->length + std::strlen(name) + std::strlen(suffix) + 2;
    Matrix *full = newStrMat(static_cast<uint32_t>(size));
    std::snprintf(full->text(), size, "%s%s%s%s", path, slash ? "/" : "", name, suffix);
    std::FILE *file = openGFile(full->text());
    releaseMat(full);
    return file;
}

std::FILE *openXFile(const char *name) {
    if (name[0] == '/') return openGFile(name);
    uint32_t k = findGv(findSymbolIndex("libpaths"));
    if (k == not_found) return nullptr;
    Matrix *paths = getGv(k);
    if (!isList(paths->l2type)) return nullptr;
    for (uint32_t i = 0; i < paths->length; ++i) {
        Matrix *folder = paths->entries()[i];
        if (folder->l2type != L2::TX) continue;
        if (std::FILE *file = openInFolder(folder, name, "")) return file;
    }
    return nullptr;
}

std::FILE *openHFile(const char *name) {
    uint32_t k = findGv(findSymbolIndex("help_file_path"));
    if (k == not_found || getGv(k)->l2type != L2::TX) xAbort("cannot open help file");
    return openInFolder(getGv(k), name, ".txt");
}

static void growBuffer(char *&buffer, uint32_t &capacity) {
    constexpr uint32_t longest = 1u << 30;
    const uint32_t doubled = 2 * capacity;
    if (doubled > longest) refuseMemory(doubled);
    buffer = static_cast<char *>(m_realloc(buffer, capacity, doubled));
    capacity = doubled;
}

uint32_t xgetline(char *&buffer, uint32_t &capacity, std::FILE *stream, char &last_end) {
    uint32_t length = 0;
    int c = std::getc(stream);
    if (c == '\n' && last_end == '\r') c = std::getc(stream);
    last_end = 0;
    for (; c != EOF && !interrupt_pending; c = std::getc(stream)) {
        bool line_end = c == '\n' || c == '\r';
        if (length + 1 >= capacity) growBuffer(buffer, capacity);
        buffer[length++] = static_cast<char>(line_end ? '\n' : c);
        if (line_end) {
            last_end = static_cast<char>(c);
            break;
        }
    }
    if (interrupt_pending) length = 0;
    buffer[length] = 0;
    return length;
}

}  // namespace vesko

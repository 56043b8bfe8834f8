// Files: the record behind a file value, and reading and writing through it.
//
// A command can be interrupted while a file waits for input or takes output. What was read and not yet given
// out stays in the stream. A stream is only ever read or only ever written, whatever its mode allows.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

// What the text of a mode contains.
constexpr uint8_t file_mode_r = 1, file_mode_w = 2, file_mode_a = 4, file_mode_plus = 8, file_mode_t = 16;

struct FileRecord {
    Matrix *name;  // linked while the file is open, else null
    std::FILE *stream;
    uint8_t mode;
    uint8_t open;
    int32_t itemSize;  // bytes of an item that is read
};

inline FileRecord *fileOf(const Matrix *m) { return static_cast<FileRecord *>(m->vdata); }

void initFiles();
void flushFiles();  // before the process ends

// ---- Opening and closing. Errors name the file, or show the source of one that is closed.
Matrix *newFileMat();  // a closed file
// Opens a closed file. Without a mode it is opened for reading.
void open_file(FileRecord *file, Matrix *name, const Matrix *mode, PcNode *node);
void close_file(FileRecord *file, PcNode *node);  // what cannot be written any more is an error

const char *getFileMode(uint8_t bits);  // text of the mode, or null if there is no such

// ---- Judging. The node is that of the call or of the field.
[[noreturn]] void refuseRead(const FileRecord *file, PcNode *node);  // tells what the state doesn't allow, or
[[noreturn]] void refuseWrite(const FileRecord *file, PcNode *node);  // that it failed
void demandOpen(const FileRecord *file, PcNode *node);
void demandReadable(const FileRecord *file, PcNode *node);
void demandWritable(const FileRecord *file, uint8_t modes, PcNode *node);  // one of the modes at least
const char *sourceOfArgument(PcNode *call, uint32_t k);  // for errors: the call itself where it is unknown

// ---- Reading, of a readable file.
bool awaitInput(FileRecord *file, PcNode *node);   // until bytes stand in the buffer; false at the end
Matrix *readChar(FileRecord *file, PcNode *node);  // these are null at the end
Matrix *get_line(FileRecord *file, PcNode *node);  // without its line end
Matrix *readBytes(FileRecord *file, uint64_t n, PcNode *node);  // BY; fewer at the end

// ---- Writing, of a writable file: false if it failed.
bool writeText(FileRecord *file, std::string_view text);
bool writeLine(FileRecord *file, std::string_view text);
bool flushFile(FileRecord *file);
void awaitOutput(FileRecord *file);  // until what the stream holds can be written

}  // namespace vesko

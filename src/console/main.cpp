// The program: command line, run-time path, the two path globals, the start-up file.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "console/command.h"
#include "console/message.h"
#include "console/rtpath.h"
#include "frontend/source.h"
#include "frontend/symbols.h"
#include "values/containers.h"
#include "values/matrix.h"

namespace vesko {
namespace {

constexpr const char *config_file = "/etc/vesko_rt/rtpath";

bool isHelpWord(const char *word) {
    return !std::strcmp(word, "-h") || !std::strcmp(word, "-help") || !std::strcmp(word, "-usage");
}

struct CommandLine {
    bool refused = false;
    const char *rtpath = nullptr;
};

// -h and its kin are accepted and have no effect.
CommandLine readCommandLine(int argc, char **argv) {
    CommandLine line;
    if (argc == 2) {
        line.refused = !isHelpWord(argv[1]);
    } else if (argc == 3) {
        line.refused = std::strcmp(argv[1], "-rtpath") != 0;
        line.rtpath = argv[2];
    } else if (argc > 3) {
        std::puts("Wrong number of arguments; ignored");
    }
    return line;
}

void publishPaths(const std::string &rtpath) {
    uint32_t libpaths = findSymbolIndex("libpaths");
    uint32_t help_file_path = findSymbolIndex("help_file_path");
    Matrix *paths = newListMat(2);
    addListEntry(paths, newStrMatCopy("."));
    addGv(libpaths, paths);
    if (rtpath.empty()) {
        addGv(help_file_path, newStrMatCopy("."));
        return;
    }
    addGv(help_file_path, newStrMatCopy(joinPath(rtpath, "share/").c_str()));
    addListEntry(paths, newStrMatCopy(joinPath(rtpath, "test/").c_str()));
}

void pushStartUpFile() {
    const char *home = std::getenv("HOME");
    if (!home) {
        xMesg("Home directory not found.");
        return;
    }
    std::string name = std::string(home) + "/.veskorc";
    if (std::FILE *file = openXFile(name.c_str())) updateCurrentFile(newStrMatCopy(name.c_str()), file);
}

int start(int argc, char **argv) {
    CommandLine line = readCommandLine(argc, argv);
    if (line.refused) {
        std::fputs("unrecognized parameter", stdout);
        return 0;
    }
    {
        std::string rtpath =
            line.rtpath ? line.rtpath : findRuntimePath(argc > 0 ? argv[0] : nullptr, config_file);
        std::fflush(stdout);
        initialize();
        publishPaths(rtpath);
        pushStartUpFile();
    }
    service();
}

}  // namespace
}  // namespace vesko

int main(int argc, char **argv) { return vesko::start(argc, argv); }

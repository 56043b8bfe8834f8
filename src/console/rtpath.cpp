// Finding the run-time path. Runs before anything can jump, so it may own strings.
#include "console/rtpath.h"

#include <unistd.h>

#include <cctype>
#include <cstdlib>

#include "console/command.h"
#include "values/memory.h"

namespace vesko {

std::string joinPath(const std::string &path, const std::string &tail) {
    return path.empty() || path.back() != '/' ? path + "/" + tail : path + tail;
}

std::string folderOfCommand(const std::string &name, const std::string &working_folder) {
    size_t slash = name.rfind('/');
    if (!name.empty() && name[0] == '/') return name.substr(0, slash);
    if (slash == std::string::npos) return working_folder;
    if (name[0] == '.' && name[1] == '/')
        return slash == 1 ? working_folder : joinPath(working_folder, name.substr(2, slash - 2));
    return joinPath(working_folder, name.substr(0, slash));
}

static std::string workingFolder() {
    char *folder = getcwd(nullptr, 0);
    std::string path = folder ? folder : "";
    std::free(folder);
    return path;
}

static std::string readConfiguredPath(const char *config_file) {
    std::FILE *file = std::fopen(config_file, "rb");
    if (!file) {
        std::puts("cannot open configuration file");
        return "";
    }
    uint32_t capacity = 64;
    char *buffer = mallocArray<char>(capacity);
    char last_end = 0;
    uint32_t length = xgetline(buffer, capacity, file, last_end);
    std::fclose(file);
    std::string path(buffer, length);
    m_free(buffer, capacity);
    if (length == 0) std::puts("cannot read run-time library path from configuration file");
    if (!path.empty() && std::isspace(static_cast<unsigned char>(path.back()))) path.pop_back();
    return path;
}

std::string findRuntimePath(const char *command_name, const char *config_file) {
    std::string path = readConfiguredPath(config_file);
    if (!path.empty()) return path;
    if (command_name) return folderOfCommand(command_name, workingFolder());
    return workingFolder();
}

}  // namespace vesko

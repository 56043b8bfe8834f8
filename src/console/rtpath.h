// The run-time path: the folder of the help texts and of the programs that `run` finds.
#pragma once

#include <string>

namespace vesko {

// The run-time path, or "" if none is found: the first line of the configuration file, the folder of the
// command name, the working folder. Complaints go to standard output: the screen is not up yet.
std::string findRuntimePath(const char *command_name, const char *config_file);

// The folder that `argv[0]` names, seen from the working folder.
std::string folderOfCommand(const std::string &name, const std::string &working_folder);

// `path`/`tail` with exactly one slash between them.
std::string joinPath(const std::string &path, const std::string &tail);

}  // namespace vesko

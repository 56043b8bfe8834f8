// The worksheet, its commands and the history as text files. Streams are the caller's; errors show in their
// state.
#pragma once

#include <cstdio>

namespace vesko {

void saveWorkSheet(std::FILE *stream);    // a record for each line up to the first free one
void loadWorkSheet(std::FILE *stream);    // appends the lines; ends at the first record that is empty
void saveCommandHist(std::FILE *stream);  // the commands of the worksheet as text
void saveCmdHist(std::FILE *stream);      // the history as text

}  // namespace vesko

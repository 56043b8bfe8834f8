// The worksheet written to a file and read back, and the history as text.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "console/history.h"
#include "console/message.h"
#include "console/worksheet.h"
#include "console/worksheet_file.h"

using namespace vesko;

namespace {

std::string written(void (*save)(std::FILE *)) {
    char *text = nullptr;
    size_t size = 0;
    std::FILE *stream = open_memstream(&text, &size);
    save(stream);
    std::fclose(stream);
    std::string result(text, size);
    std::free(text);
    return result;
}

void command(const std::string &text) {
    initVideoBuf();
    printStr(text.data(), static_cast<uint32_t>(text.size()), false);
}

}  // namespace

TEST(WorksheetFile, comes_back_as_it_was) {
    const std::string before = written(saveWorkSheet);
    const std::string longer(700, 'x');
    command("a = 3");
    writeCmdHist();
    xOpenLine(0, "%s", longer.c_str());
    xCloseLine(0, "%s", "below");
    const std::string saved = written(saveWorkSheet);
    EXPECT_EQ(saved, before + "0>> a = 3\n2   " + longer.substr(0, opbufflen) + "\n3   below\n");
    EXPECT_EQ(written(saveCmdHist), "a = 3\n");
    const std::string file = "0>> b\n1   c\n?   d\n4   e\n\n0>> f\n";
    std::FILE *stream = fmemopen(const_cast<char *>(file.data()), file.size(), "r");
    loadWorkSheet(stream);
    std::fclose(stream);
    EXPECT_EQ(written(saveWorkSheet), saved + "0>> b\n1   c\n1   d\n4   e\n");
    EXPECT_TRUE(written(saveCommandHist).ends_with("a = 3\nb\nc\nd\n"));
}

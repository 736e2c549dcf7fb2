// The ".hidden" list: its bounded reader and its line splitter.
#include "foundation/hidden_list.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace {

std::vector<std::string> Names(std::string_view content) {
    std::vector<std::string> names;
    ForEachHiddenName(content, [&names](std::string_view name) { names.emplace_back(name); });
    return names;
}

TEST(HiddenList, LinesEndInLfOrCrLfAndEmptyOnesAreSkipped) {
    EXPECT_EQ(Names("a\nb\r\n\n\r\nc"), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(Names("only"), (std::vector<std::string>{"only"}));
    EXPECT_EQ(Names(""), (std::vector<std::string>{}));
    EXPECT_EQ(Names("a\r"), (std::vector<std::string>{"a"})) << "a last CR is a line end too";
    EXPECT_EQ(Names(" spaced name \n"), (std::vector<std::string>{" spaced name "}))
        << "names keep their spaces";
}

TEST(HiddenList, ReaderStopsAtItsBoundAndClosesTheFile) {
    TempDir temp;
    std::string big(MAX_HIDDEN_LIST + 5000, 'x');
    std::string path = temp.Write(".hidden", big);
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(ReadHiddenList(fd).size(), MAX_HIDDEN_LIST);
    EXPECT_EQ(fcntl(fd, F_GETFD), -1) << "the descriptor was closed";
    std::string small = temp.Write("small", "a\nb\n");
    EXPECT_EQ(ReadHiddenList(open(small.c_str(), O_RDONLY | O_CLOEXEC)), "a\nb\n");
    EXPECT_EQ(ReadHiddenList(-1), "");
}

} // namespace

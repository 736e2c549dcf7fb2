// STable: the file form both ways, comma text, column references and the
// attribute strings.
#include "toolkit/table.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "foundation/file.h"

namespace {

SFileMem MemWith(const std::string& bytes) {
    SFileMem file;
    file.Write(bytes.data(), static_cast<int>(bytes.size()));
    file.Rewind();
    return file;
}

std::string Bytes(SFileMem& file) {
    return std::string(file.GetData() != nullptr ? file.GetData() : "", file.GetSize());
}

TEST(TableFile, WritesAndReadsBackEveryString) {
    STable table;
    ASSERT_EQ(table.AddColumn(" Title "), 0);
    ASSERT_EQ(table.AddColumn("Year"), 1);
    table.SetTableString(0, "sheet");
    table.SetColumnString(1, 1, "width=40");
    table.AddRow();
    table.AddRow();
    table.SetCell(0, "title", "  Blue Train ");
    table.SetCell(1, "1", "1957");
    table.SetRowString(1, 0, "height=20");
    ASSERT_TRUE(table.SetAttribute(1, 1, 0, "bold", "1"));
    SFileMem file;
    ASSERT_TRUE(table.Save(&file));
    EXPECT_EQ(Bytes(file), "TAVORA TABLE 1.0.0.0\r\n2\r\n2\r\nsheet\r\n\r\n"
                           "Title\r\n\r\n\r\nYear\r\n\r\nwidth=40\r\n"
                           "\r\n\r\n  Blue Train \r\n\r\n\r\n\r\n\r\n\r\n"
                           "height=20\r\n\r\n\r\n\r\n\r\n1957\r\nbold=1\r\n\r\n");
    file.Rewind();
    STable read;
    ASSERT_TRUE(read.Load(&file, true, true, false));
    EXPECT_EQ(read.GetColumnCount(), 2);
    EXPECT_EQ(read.GetRowCount(), 2);
    EXPECT_EQ(read.GetCell(0, "TITLE"), "  Blue Train "); // cell texts keep their blanks
    EXPECT_EQ(read.GetAttribute(1, 1, 0, "BOLD"), "1");
    EXPECT_EQ(read.GetRowString(1, 0), "height=20");
    EXPECT_EQ(read.GetColumnString(1, 1), "width=40");
    EXPECT_EQ(read.GetTableString(0), "sheet");
    SFileMem again;
    ASSERT_TRUE(read.Save(&again));
    EXPECT_EQ(Bytes(again), Bytes(file));
    // A zero byte read from a file is written back, not cut there.
    std::string withZero("a\0b", 3);
    SFileMem zero = MemWith("TAVORA TABLE 1.0.0.0\r\n0\r\n0\r\n" + withZero + "\r\n\r\n");
    STable zeroTable;
    ASSERT_TRUE(zeroTable.Load(&zero, true, true, false));
    SFileMem zeroAgain;
    ASSERT_TRUE(zeroTable.Save(&zeroAgain));
    EXPECT_EQ(Bytes(zeroAgain), Bytes(zero));
}

TEST(TableFile, DamagedFilesGiveFalseAndAnEmptyTable) {
    const char* cases[] = {
        "TAVORA TABLE 2.0.0.0\r\n0\r\n0\r\n\r\n\r\n",        // wrong magic
        "TAVORA TABLE 1.0.0.0\r\n-1\r\n0\r\n\r\n\r\n",       // negative count
        "TAVORA TABLE 1.0.0.0\r\n2\r\n0\r\n\r\n\r\nA\r\n\r\n\r\na\r\n\r\n\r\n", // a name twice
        "TAVORA TABLE 1.0.0.0\r\n1\r\n0\r\n\r\n\r\n7\r\n\r\n\r\n", // a number as name
        "TAVORA TABLE 1.0.0.0\r\n1\r\n2000000000\r\n\r\n\r\nA\r\n\r\n\r\n", // ends early
        ""};
    for (const char* bytes : cases) {
        SFileMem file = MemWith(bytes);
        STable table;
        table.AddColumn("Old");
        EXPECT_FALSE(table.Load(&file, true, true, false)) << bytes;
        EXPECT_EQ(table.GetColumnCount(), 0) << bytes;
        EXPECT_EQ(table.GetRowCount(), 0) << bytes;
    }
    // The options decide the trimming of the two kinds of string only.
    SFileMem file = MemWith("TAVORA TABLE 1.0.0.0\r\n1\r\n1\r\n t \r\n u \r\n"
                            " N \r\n c \r\n d \r\n r \r\n s \r\n x \r\n a \r\n b \r\n");
    STable table;
    ASSERT_TRUE(table.Load(&file, false, true, false));
    EXPECT_EQ((std::tuple{table.GetTableString(0), table.GetTableString(1),
                          table.GetColumnName(0), table.GetColumnString(0, 0),
                          table.GetRowString(0, 0), table.GetCell(0, 0),
                          table.GetCellAttributes(0, 0, 0), table.GetCellAttributes(0, 0, 1)}),
              (std::tuple{SString("t"), SString(" u "), SString("N"), SString("c"), SString("r"),
                          SString(" x "), SString("a"), SString(" b ")}));
}

TEST(TableCommaText, TheFirstLineFixesTheColumns) {
    SFileMem file = MemWith("a,\"b,c\",d\r\n\r\n1,2\r\n1,2,3,4\r\n");
    STable table;
    ASSERT_TRUE(table.Load(&file, true, true, true));
    EXPECT_EQ(table.GetColumnCount(), 3);
    EXPECT_EQ(table.GetRowCount(), 3);
    EXPECT_EQ(table.GetCell(0, 1), "b,c");
    EXPECT_EQ(table.GetCell(1, 2), ""); // fewer parts leave cells empty
    EXPECT_EQ(table.GetCell(2, 2), "3"); // more parts lose the rest
    EXPECT_EQ(table.GetColumnName(0), "");

    SFileMem empty = MemWith("\r\n\r\n\r\n");
    ASSERT_TRUE(table.Load(&empty, true, true, true));
    EXPECT_EQ(table.GetColumnCount(), 0);
    EXPECT_EQ(table.GetRowCount(), 0);
}

TEST(TableColumns, ReferencesNamesAndRemoval) {
    STable table;
    EXPECT_EQ(table.AddColumn("3"), -1); // would read as the index 3
    EXPECT_EQ(table.AddColumn("B"), 0);
    EXPECT_EQ(table.AddColumn("b"), -1);
    EXPECT_EQ(table.AddColumn("A", 0), 0);
    EXPECT_EQ(table.AddColumn("", 99), 2); // outside the range: appended
    EXPECT_EQ(table.FindColumn("a"), 0);
    EXPECT_EQ(table.FindColumn("1"), 1);
    EXPECT_EQ(table.FindColumn("5"), -1);
    EXPECT_EQ(table.FindColumn(""), -1);
    EXPECT_EQ(table.AddRow(), 0);
    EXPECT_EQ(table.AddRow(0), 0);
    table.SetCell(1, "B", "kept");
    EXPECT_EQ(table.AddColumn("C", 1), 1); // a new column has cells for every row
    EXPECT_EQ(table.GetCell(1, "C"), "");
    EXPECT_EQ(table.GetCell(1, "B"), "kept");
    EXPECT_FALSE(table.SetCell(2, "B", "no row"));
    for (const char* column : {"A", "B", "C", "0"}) {
        EXPECT_TRUE(table.RemoveColumn(column)) << column;
    }
    EXPECT_EQ(table.GetColumnCount(), 0);
    EXPECT_EQ(table.GetRowCount(), 0); // the last column takes the rows along
}

TEST(TableAttributes, SetReplacesInPlaceAppendsOrKeeps) {
    // text, key, value, result
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"", "bold", "1", "bold=1"},
        {"color=red", "bold", "1", "color=red;bold=1"},
        {"Bold=0;color=red", "BOLD", "1", "Bold=1;color=red"},
        {"a=1;b=2;c=3", "b", "", "a=1;b=;c=3"},
        {"a=1", "a", "x;==;y", "a=1"},
        {"ab=1", "a", "2", "ab=1;a=2"},
    };
    for (auto [text, key, value, result] : cases) {
        EXPECT_EQ(SetAttributeValue(SString(text), key, value), result) << text << " " << key;
    }
    EXPECT_EQ(GetAttributeValue(SString("a=1;Width=40"), "width"), "40");
    EXPECT_EQ(GetAttributeValue(SString("a=1"), "b"), "");
    EXPECT_EQ(GetAttributeValue(SString("a=x=y"), "a"), "x=y");
}

} // namespace

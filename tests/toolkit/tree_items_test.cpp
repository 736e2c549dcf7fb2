// STreeItems: the tree definition both ways, depth jumps, attributes, and
// the item list that the tree control draws.
#include "toolkit/tree_items.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/file.h"

namespace {

SFileMem MemWith(const std::string& bytes) {
    SFileMem file;
    file.Write(bytes.data(), static_cast<int>(bytes.size()));
    file.Rewind();
    return file;
}

// Every item as "<level>text" in drawing order, expanded or not.
std::vector<std::string> Shape(const STreeItems& tree) {
    std::vector<std::string> shape;
    std::vector<std::pair<HTREEITEM, int>> pending;
    for (auto it = tree.GetRoots().rbegin(); it != tree.GetRoots().rend(); ++it) {
        pending.emplace_back(*it, 0);
    }
    while (!pending.empty()) {
        auto [item, level] = pending.back();
        pending.pop_back();
        shape.push_back(std::to_string(level) + item->text.c_str());
        for (auto it = item->children.rbegin(); it != item->children.rend(); ++it) {
            pending.emplace_back(*it, level + 1);
        }
    }
    return shape;
}

TEST(TreeDefinition, DepthsPlaceItemsAsTheStackRemembersThem) {
    struct Case {
        const char* name;
        std::string body;
        std::vector<std::string> shape;
    };
    const Case cases[] = {
        {"only the magic", "", {}},
        {"siblings and children", "A\r\n\tB\r\n\tC\r\nD\r\n", {"0A", "1B", "1C", "0D"}},
        {"a jump of three is one level", "A\r\n\t\t\tB\r\n\t\t\tC\r\n", {"0A", "1B", "1C"}},
        // C pops back to the top; D, deeper than the top's 0, goes under C.
        {"back to a depth between", "A\r\n\t\tB\r\n\tC\r\n\tD\r\n", {"0A", "1B", "0C", "1D"}},
        {"first line deep", "\t\tA\r\nB\r\n", {"0A", "0B"}},
        {"empty lines skipped, dot ends", "A\r\n\r\n\tB\r\n.\r\nC\r\n", {"0A", "1B"}},
        {"no final line end", "A\r\n\tB", {"0A", "1B"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SFileMem file = MemWith("TAVORA TREE 1.0.0.0\r\n" + c.body);
        STreeItems tree;
        tree.AddItem("old", -1, -1, nullptr, STreeItems::TVI_LAST, 0);
        ASSERT_TRUE(tree.Load(&file, false));
        EXPECT_EQ(Shape(tree), c.shape);
    }
    SFileMem wrong = MemWith("TAVORA TREE 1.0\r\nA\r\n");
    STreeItems tree;
    EXPECT_FALSE(tree.Load(&wrong, false));
    EXPECT_EQ(tree.GetCount(), 0);
}

TEST(TreeDefinition, AttributesSplitAtTheLastPlus) {
    SFileMem file = MemWith("TAVORA TREE 1.0.0.0\r\na+b+7,2,3,1,1\r\n\tc+5\r\n\td+x,,\r\ne\r\n");
    STreeItems tree;
    ASSERT_TRUE(tree.Load(&file, true));
    EXPECT_EQ(Shape(tree), (std::vector<std::string>{"0a+b", "1c", "1d", "0e"}));
    HTREEITEM a = tree.GetRoots()[0];
    EXPECT_EQ((std::vector<long long>{a->data, a->image, a->selectedImage, a->expanded,
                                      a->checked}),
              (std::vector<long long>{7, 2, 3, 1, 1}));
    HTREEITEM c = a->children[0];
    EXPECT_EQ((std::vector<long long>{c->data, c->image, c->selectedImage, c->expanded}),
              (std::vector<long long>{5, -1, -1, 0}));
    EXPECT_EQ(a->children[1]->data, 0); // a broken list is still added
    file.Rewind();
    ASSERT_TRUE(tree.Load(&file, false));
    EXPECT_EQ(tree.GetRoots()[0]->text, "a+b+7,2,3,1,1");
}

TEST(TreeDefinition, WrittenTreesReadBackTheSame) {
    STreeItems tree;
    HTREEITEM music = tree.AddItem("Music+Video", 1, 2, nullptr, STreeItems::TVI_LAST, 42);
    HTREEITEM jazz = tree.AddItem("Jazz", 3, 4, music, STreeItems::TVI_LAST, -5);
    tree.AddItem("Blues", -1, -1, music, STreeItems::TVI_FIRST, 0);
    tree.AddItem("Bebop", -1, -1, jazz, STreeItems::TVI_LAST, 0)->checked = true;
    music->expanded = true;
    for (bool withAttributes : {true, false}) {
        SFileMem file;
        ASSERT_TRUE(tree.Save(&file, withAttributes));
        file.Rewind();
        STreeItems read;
        ASSERT_TRUE(read.Load(&file, withAttributes));
        EXPECT_EQ(Shape(read), (std::vector<std::string>{"0Music+Video", "1Blues", "1Jazz",
                                                         "2Bebop"}));
        if (withAttributes) {
            HTREEITEM readJazz = read.GetRoots()[0]->children[1];
            EXPECT_EQ((std::vector<long long>{readJazz->data, readJazz->image,
                                              readJazz->selectedImage}),
                      (std::vector<long long>{-5, 3, 4}));
            EXPECT_TRUE(readJazz->children[0]->checked);
            EXPECT_TRUE(read.GetRoots()[0]->expanded);
        }
    }
    // Texts the file form cannot hold are refused rather than misread.
    for (const char* text : {"two\r\nlines", "\tleading tab", ".", ""}) {
        STreeItems odd;
        odd.AddItem(text, -1, -1, nullptr, STreeItems::TVI_LAST, 0);
        SFileMem file;
        EXPECT_FALSE(odd.Save(&file, false)) << text;
    }
}

TEST(TreeItems, RemovalTakesTheSubtreeAndVisibleFollowsExpansion) {
    STreeItems tree;
    HTREEITEM a = tree.AddItem("a", -1, -1, nullptr, STreeItems::TVI_LAST, 0);
    HTREEITEM b = tree.AddItem("b", -1, -1, a, STreeItems::TVI_LAST, 0);
    tree.AddItem("c", -1, -1, b, STreeItems::TVI_LAST, 0);
    HTREEITEM d = tree.AddItem("d", -1, -1, nullptr, STreeItems::TVI_LAST, 0);
    std::vector<HTREEITEM> visible;
    std::vector<int> levels;
    tree.CollectVisible(visible, &levels);
    EXPECT_EQ(visible, (std::vector<HTREEITEM>{a, d}));
    a->expanded = true;
    b->expanded = true;
    tree.CollectVisible(visible, &levels);
    EXPECT_EQ(visible.size(), 4u);
    EXPECT_EQ(levels, (std::vector<int>{0, 1, 2, 0}));
    EXPECT_EQ(tree.GetNextSibling(a), d);
    EXPECT_EQ(tree.GetPreviousSibling(a), nullptr);
    EXPECT_EQ(tree.GetLevel(b), 1);
    ASSERT_TRUE(tree.RemoveItem(b));
    EXPECT_EQ(tree.GetCount(), 2);
    EXPECT_FALSE(tree.Contains(b));
    EXPECT_FALSE(tree.RemoveItem(b));
    EXPECT_EQ(tree.AddItem("x", -1, -1, b, STreeItems::TVI_LAST, 0), nullptr);
    EXPECT_TRUE(a->children.empty());
}

TEST(TreeItems, AVeryDeepDefinitionLoadsSavesAndGoesWithoutRecursion) {
    std::string body;
    std::string tabs;
    for (int depth = 0; depth < 3000; ++depth) {
        body += tabs + "x\r\n";
        tabs += '\t';
    }
    SFileMem file = MemWith("TAVORA TREE 1.0.0.0\r\n" + body);
    STreeItems tree;
    ASSERT_TRUE(tree.Load(&file, false));
    EXPECT_EQ(tree.GetCount(), 3000);
    SFileMem written;
    ASSERT_TRUE(tree.Save(&written, false));
    EXPECT_EQ(written.GetSize(), file.GetSize());
    EXPECT_TRUE(tree.RemoveItem(tree.GetRoots()[0]));
    EXPECT_EQ(tree.GetCount(), 0);
}

} // namespace

#include "foundation/array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

SArray<int> Make(std::initializer_list<int> values) {
    SArray<int> array;
    for (int value : values) {
        array.Add(value);
    }
    return array;
}

std::vector<int> Items(const SArray<int>& array) {
    return {array.begin(), array.end()};
}

SStringArray MakeStrings(std::initializer_list<const char*> texts) {
    SStringArray array;
    for (const char* text : texts) {
        array.Add(text);
    }
    return array;
}

std::vector<std::string> Texts(const SStringArray& array) {
    std::vector<std::string> texts;
    for (const SString* item : array) {
        texts.emplace_back(item->c_str());
    }
    return texts;
}

// Logs notification and destruction in the order they happen.
struct Tracked {
    Tracked(std::vector<std::string>* log, int id) : log(log), id(id) {}
    ~Tracked() { log->push_back("destroy " + std::to_string(id)); }
    std::vector<std::string>* log;
    int id;
};

class TrackingArray : public SArray<Tracked*> {
public:
    void OnDeleteItem(Tracked*& item, int index, void*) override {
        item->log->push_back("notify " + std::to_string(item->id) + " at " + std::to_string(index));
    }
};

// Orders by distance from zero, to show that searches use the override.
class AbsoluteArray : public SArray<int> {
public:
    int CompareItems(const int& a, const int& b, uint32_t, void*) const override {
        return std::abs(a) < std::abs(b) ? -1 : (std::abs(a) > std::abs(b) ? 1 : 0);
    }
};

} // namespace

TEST(ArrayGrowth, CapacityIsNextMultipleOf64AboveCount) {
    const std::pair<int, int> cases[] = {{0, 64},   {1, 64},    {63, 64},   {64, 128},
                                         {65, 128}, {127, 128}, {128, 192}, {-3, 64}};
    for (auto [count, capacity] : cases) {
        SArray<int> array;
        ASSERT_TRUE(array.SetSize(count));
        EXPECT_EQ(array.GetCapacity(), capacity) << count;
        EXPECT_EQ(array.GetCount(), std::max(count, 0));
    }
    EXPECT_EQ(SArray<int>().GetCapacity(), 0);
}

// The block behind the capacity grows and shrinks geometrically; what a
// caller sees stays the rule's: the capacity at every count, the items kept,
// and no items carried without keep.
TEST(ArrayGrowth, AddingAndRemovingOneByOneFollowTheCapacityRule) {
    auto rule = [](int count) { return count + 64 - count % 64; };
    SArray<int> array;
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(array.Add(i * 7), i);
        ASSERT_EQ(array.GetCapacity(), rule(i + 1)) << i;
    }
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(array.GetAt(i), i * 7) << i;
    }
    while (array.GetCount() > 100) {
        array.RemoveAt(array.GetCount() - 1);
        ASSERT_EQ(array.GetCapacity(), rule(array.GetCount()));
    }
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(array.GetAt(i), i * 7) << i;
    }
    for (int count : {130, 250, 90, 129}) {
        ASSERT_TRUE(array.SetSize(count, false));
        EXPECT_EQ(array.GetCapacity(), rule(count));
        EXPECT_EQ(Items(array), std::vector<int>(count, 0)) << count;
        for (int i = 0; i < count; ++i) {
            array.GetAt(i) = i + 1;
        }
    }
    SStringArray strings;
    for (int i = 0; i < 3000; ++i) {
        strings.Add(std::to_string(i).c_str());
    }
    SStringArray moved(std::move(strings));
    EXPECT_EQ(moved.GetCapacity(), rule(3000));
    EXPECT_EQ(strings.GetCapacity(), 0);
    moved.Add("last");
    EXPECT_EQ(moved.GetText(1234), "1234");
    EXPECT_EQ(moved.GetText(3000), "last");
}

TEST(ArrayGrowth, RemovingFrom65To63ShrinksTheBlockAndKeepsItems) {
    SArray<int> array;
    for (int i = 0; i < 65; ++i) {
        array.Add(i * 3);
    }
    EXPECT_EQ(array.GetCapacity(), 128);
    array.RemoveAt(63, 2);
    EXPECT_EQ(array.GetCount(), 63);
    EXPECT_EQ(array.GetCapacity(), 64);
    for (int i = 0; i < 63; ++i) {
        ASSERT_EQ(array.GetAt(i), i * 3);
    }
}

TEST(ArrayGrowth, SetSizeKeepsOrDropsItemsAndZeroesNewOnes) {
    SArray<int> array = Make({5, 6, 7});
    array.SetSize(200);
    EXPECT_EQ(Items(array)[2], 7);
    EXPECT_EQ(array.GetAt(199), 0);
    array.SetSize(2);
    EXPECT_EQ(Items(array), (std::vector<int>{5, 6}));
    array.SetSize(100, false);
    EXPECT_EQ(array.GetAt(0), 0);
    EXPECT_EQ(array.GetCount(), 100);
    array.RemoveAll();
    EXPECT_EQ(array.GetCount(), 0);
    EXPECT_EQ(array.GetCapacity(), 64);
    EXPECT_FALSE(array.SetSize(INT_MAX));
    EXPECT_EQ(array.GetCount(), 0);
}

TEST(ArrayEditing, AddFollowsIndexAndCountRulesAndCopiesItsOwnItemsSafely) {
    SArray<int> array = Make({1, 2, 3});
    EXPECT_EQ(array.Add(9, 1), 1);
    EXPECT_EQ(array.Add(7, 100), 4); // past the end means the end
    EXPECT_EQ(array.Add(8, -5), 5);
    EXPECT_EQ(array.Add(4, 0, 3), 0);
    EXPECT_EQ(array.Add(1, 0, 0), -1);
    EXPECT_EQ(array.Add(1, 0, -2), -1);
    EXPECT_EQ(Items(array), (std::vector<int>{4, 4, 4, 1, 9, 2, 3, 7, 8}));
    // An item of the array itself, added while the block grows.
    SArray<int> big;
    for (int i = 0; i < 64; ++i) {
        big.Add(i + 100);
    }
    big.Add(big.GetAt(0), 0, 70);
    EXPECT_EQ(big.GetCount(), 134);
    EXPECT_EQ(big.GetAt(69), 100);
    EXPECT_EQ(big.GetAt(70), 100);
    EXPECT_EQ(big.GetAt(133), 163);
}

TEST(ArrayEditing, RemoveAtSwapAndItemPointerCheckTheirIndexes) {
    SArray<int> array = Make({0, 1, 2, 3, 4, 5});
    array.RemoveAt(6);
    array.RemoveAt(-1);
    EXPECT_EQ(array.GetCount(), 6);
    array.RemoveAt(1, 2);
    EXPECT_EQ(Items(array), (std::vector<int>{0, 3, 4, 5}));
    array.RemoveAt(3, 50);
    EXPECT_TRUE(array.Swap(0, 2));
    EXPECT_EQ(Items(array), (std::vector<int>{4, 3, 0}));
    EXPECT_FALSE(array.Swap(1, 1));
    EXPECT_FALSE(array.Swap(-1, 0));
    EXPECT_FALSE(array.Swap(0, 3));
    EXPECT_EQ(array.GetItemPtr(3), nullptr);
    EXPECT_EQ(array.GetItemPtr(-1), nullptr);
    ASSERT_NE(array.GetItemPtr(2), nullptr);
    EXPECT_EQ(*array.GetItemPtr(2), 0);
    array.RemoveAt(0, -1);
    EXPECT_EQ(array.GetCount(), 0);
}

TEST(ArrayEditing, AssignCopiesItemsAndFlagsAndFreeClearsAll) {
    SArray<int> source = Make({4, 5, 6});
    source.SetFlags(SORT_DESCENDING);
    SArray<int> target = Make({1});
    target.Assign(source);
    EXPECT_EQ(Items(target), (std::vector<int>{4, 5, 6}));
    EXPECT_EQ(target.GetFlags(), SORT_DESCENDING);
    target.Free();
    EXPECT_EQ(target.GetCount(), 0);
    EXPECT_EQ(target.GetCapacity(), 0);
    EXPECT_EQ(target.GetFlags(), 0u);
    SArray<int> moved(std::move(source));
    EXPECT_EQ(Items(moved), (std::vector<int>{4, 5, 6}));
    EXPECT_EQ(source.GetCount(), 0);
}

TEST(ArrayDelete, DeleteAtNotifiesThenDestroysNonNullItems) {
    std::vector<std::string> log;
    TrackingArray array;
    array.Add(new Tracked(&log, 1));
    array.Add(nullptr);
    array.Add(new Tracked(&log, 2));
    array.Add(new Tracked(&log, 3));
    array.DeleteAt(0, 3);
    EXPECT_EQ(log, (std::vector<std::string>{"notify 1 at 0", "destroy 1", "notify 2 at 2",
                                             "destroy 2"}));
    ASSERT_EQ(array.GetCount(), 1);
    EXPECT_EQ(array.GetAt(0)->id, 3);
    array.DeleteAll();
    EXPECT_EQ(log.back(), "destroy 3");
    EXPECT_EQ(array.GetCount(), 0);
}

TEST(ArrayDelete, PointerAndValueArraysOnlyRemove) {
    std::vector<std::string> log;
    Tracked* item = new Tracked(&log, 7);
    {
        SArray<Tracked*> array;
        array.Add(item);
        array.RemoveAt(0);
        array.Add(item);
    }
    EXPECT_TRUE(log.empty());
    delete item;
    SArray<int> array = Make({1, 2, 3});
    array.DeleteAt(1);
    EXPECT_EQ(Items(array), (std::vector<int>{1, 3}));
    array.DeleteAll();
    EXPECT_EQ(array.GetCount(), 0);
}

TEST(ArraySort, OrdersByTable) {
    // clang-format off
    const std::tuple<std::vector<int>, uint32_t, std::vector<int>> cases[] = {
        {{3, 1, 2}, 0, {1, 2, 3}}, {{3, 1, 2}, SORT_DESCENDING, {3, 2, 1}},
        {{2, 5, 2, 1, 5, 2}, 0, {1, 2, 2, 2, 5, 5}}, {{1, 2, 3, 4, 5}, 0, {1, 2, 3, 4, 5}},
        {{5, 4, 3, 2, 1}, 0, {1, 2, 3, 4, 5}},
        {{-1, 1, 0}, 0, {0, 1, -1}}, // unsigned: -1 is the largest
        {{7, 7}, SORT_DESCENDING, {7, 7}}};
    // clang-format on
    for (const auto& [input, flags, sorted] : cases) {
        SArray<int> array;
        for (int value : input) {
            array.Add(value);
        }
        array.SetFlags(flags);
        array.Sort();
        EXPECT_EQ(Items(array), sorted);
    }
}

TEST(ArraySort, OneItemAndSubRangesAreLeftAlone) {
    SArray<int> one = Make({42});
    one.SetFlags(SORT_DESCENDING | 0x80);
    one.Sort();
    EXPECT_EQ(Items(one), (std::vector<int>{42}));
    EXPECT_EQ(one.GetFlags(), SORT_DESCENDING | 0x80);

    SArray<int> array = Make({9, 8, 7, 6, 5, 4});
    array.Sort(1, 4);
    EXPECT_EQ(Items(array), (std::vector<int>{9, 6, 7, 8, 5, 4}));
    array.Sort(4, 2); // empty range
    array.Sort(-1);
    EXPECT_EQ(Items(array), (std::vector<int>{9, 6, 7, 8, 5, 4}));
}

TEST(ArraySort, LargeRandomArraysMatchStdSortAndManyEqualItemsComplete) {
    std::mt19937 random(20240611);
    for (int size : {2, 3, 17, 64, 1000, 5000}) {
        for (int spread : {3, 1000, INT_MAX}) {
            std::uniform_int_distribution<int> pick(-spread, spread);
            SArray<int> array;
            std::vector<unsigned> expected;
            for (int i = 0; i < size; ++i) {
                const int value = pick(random);
                array.Add(value);
                expected.push_back(static_cast<unsigned>(value));
            }
            array.Sort();
            std::sort(expected.begin(), expected.end());
            std::vector<unsigned> got(array.begin(), array.end());
            ASSERT_EQ(got, expected) << size << " " << spread;
        }
    }
    SArray<int> equal; // many equal items complete
    equal.Add(5, -1, 4000);
    equal.Add(1);
    equal.Sort();
    EXPECT_EQ(equal.GetAt(0), 1);
    EXPECT_EQ(equal.GetAt(4000), 5);
}

TEST(ArraySort, BuiltInOrderForOtherValueTypes) {
    SArray<double> doubles;
    for (double value : {2.5, 0.25, 1e9, 0.0, 3.0}) {
        doubles.Add(value);
    }
    doubles.Sort();
    EXPECT_EQ(std::vector<double>(doubles.begin(), doubles.end()),
              (std::vector<double>{0.0, 0.25, 2.5, 3.0, 1e9}));

    struct Box {
        int left, top, right, bottom;
    };
    SArray<Box> boxes;
    boxes.Add(Box{1, 2, 3, 4});
    boxes.Add(Box{5, 6, 7, 8});
    EXPECT_EQ(boxes.Find(Box{5, 6, 7, 8}), 1);
    EXPECT_EQ(boxes.Find(Box{5, 6, 7, 9}), -1);
}

TEST(ArraySort, StringsByByteNoCaseAndDescending) {
    SStringArray array = MakeStrings({"b", "B", "a", "C", "A"});
    array.Sort();
    EXPECT_EQ(Texts(array), (std::vector<std::string>{"A", "B", "C", "a", "b"}));
    array.SetFlags(SORT_DESCENDING);
    array.Sort();
    EXPECT_EQ(Texts(array), (std::vector<std::string>{"b", "a", "C", "B", "A"}));
    array.SetFlags(SORT_NOCASE);
    array.Sort();
    std::vector<std::string> folded;
    for (const std::string& text : Texts(array)) {
        folded.push_back(text == "A" || text == "a" ? "a"
                                                    : (text == "B" || text == "b" ? "b" : "c"));
    }
    EXPECT_EQ(folded, (std::vector<std::string>{"a", "a", "b", "b", "c"}));
}

TEST(ArraySearch, FindFollowsRangeRules) {
    SArray<int> array = Make({4, 8, 15, 16, 23, 42});
    EXPECT_EQ(array.Find(15), 2);
    EXPECT_EQ(array.Find(15, 3), -1);
    EXPECT_EQ(array.Find(42, 1, 100), 5); // an end out of range means the count
    EXPECT_EQ(array.Find(4, -1), -1);
    EXPECT_EQ(array.Find(23, 4, 4), -1);
    EXPECT_EQ(array.Find(99), -1);
    AbsoluteArray absolute;
    absolute.Add(3);
    absolute.Add(-7);
    EXPECT_EQ(absolute.Find(7), 1);
}

TEST(ArraySearch, FindSortedAtEndsAndOnDuplicates) {
    SArray<int> array = Make({1, 2, 2, 2, 3, 9});
    EXPECT_EQ(array.FindSorted(1), 0);
    EXPECT_EQ(array.FindSorted(9), 5);
    const int two = array.FindSorted(2);
    ASSERT_GE(two, 1);
    EXPECT_EQ(array.GetAt(two), 2);
    EXPECT_EQ(array.FindSorted(0), -1);
    EXPECT_EQ(array.FindSorted(10), -1);
    EXPECT_EQ(array.FindSorted(9, 0, 5), -1);
    EXPECT_EQ(SArray<int>().FindSorted(1), -1);
}

TEST(ArraySearch, FindInsertPositionByTable) {
    SArray<int> array = Make({10, 20, 30, 40});
    // item, start, end, position
    // clang-format off
    const std::tuple<int, int, int, int> cases[] = {
        {5, 0, -1, 0}, {10, 0, -1, 0}, {25, 0, -1, 2}, {40, 0, -1, 3}, {45, 0, -1, 4},
        {15, 1, -1, 1}, {10, 5, -1, -1},
        // The closing comparison looks at the item just past a sub-range.
        {35, 0, 2, 3}};
    // clang-format on
    for (auto [item, start, end, position] : cases) {
        EXPECT_EQ(array.FindInsertPosition(item, start, end), position) << item;
    }
    SArray<int> descending = Make({40, 30, 20, 10});
    descending.SetFlags(SORT_DESCENDING);
    EXPECT_EQ(descending.FindInsertPosition(25), 2);
    EXPECT_EQ(SArray<int>().FindInsertPosition(3), -1);
}

TEST(ArraySearch, AddSortedKeepsOrder) {
    std::mt19937 random(7);
    for (uint32_t flags : {0u, SORT_DESCENDING}) {
        SArray<int> array;
        array.SetFlags(flags);
        EXPECT_EQ(array.AddSorted(50), 0);
        for (int i = 0; i < 300; ++i) {
            array.AddSorted(static_cast<int>(random() % 40));
        }
        std::vector<int> items = Items(array);
        if (flags != 0) {
            std::reverse(items.begin(), items.end());
        }
        EXPECT_TRUE(std::is_sorted(items.begin(), items.end()));
        EXPECT_EQ(array.GetCount(), 301);
    }
}

TEST(ArraySearch, RemoveEqualRemovesEveryMatchInRange) {
    SArray<int> array = Make({1, 2, 1, 3, 1, 1});
    EXPECT_EQ(array.RemoveEqual(1, 1, 5), 2);
    EXPECT_EQ(Items(array), (std::vector<int>{1, 2, 3, 1}));
    EXPECT_EQ(array.RemoveEqual(1), 2);
    EXPECT_EQ(Items(array), (std::vector<int>{2, 3}));
    EXPECT_EQ(array.RemoveEqual(7), 0);
    EXPECT_EQ(array.RemoveEqual(2, 2), 0);
}

TEST(StringArray, OwnsCopiesAndSetTextIgnoresBadIndexes) {
    SString source("song");
    source.userA = 11;
    SStringArray array;
    array.Add(&source);
    array.Add(source);
    source = "changed";
    EXPECT_EQ(Texts(array), (std::vector<std::string>{"song", "song"}));
    EXPECT_EQ(array.GetAt(0)->userA, 11u);
    EXPECT_EQ(array.Find("song", 1), 1);
    EXPECT_EQ(array.FindSorted("song"), 1);
    EXPECT_EQ(array.Find("Song"), -1);
    array.SetFlags(SORT_NOCASE);
    EXPECT_EQ(array.Find("SONG"), 0);
    array.SetText(1, "beta");
    array.SetText(2, "gamma");
    array.SetText(-1, "x");
    EXPECT_EQ(Texts(array), (std::vector<std::string>{"song", "beta"}));
    EXPECT_STREQ(array.GetText(1).c_str(), "beta");
    EXPECT_STREQ(array.GetText(5).c_str(), "");
}

TEST(StringArray, AssignMakesAnIndependentCopy) {
    SStringArray source = MakeStrings({"x", "y"});
    source.SetFlags(SORT_NOCASE);
    SStringArray target = MakeStrings({"old"});
    target.Assign(source);
    target.Assign(target);
    source.SetText(0, "changed");
    EXPECT_EQ(Texts(target), (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(target.GetFlags(), 0u);
    SArray<SString*>& plain = target;
    plain.Assign(source);
    EXPECT_EQ(Texts(target), (std::vector<std::string>{"changed", "y"}));
    EXPECT_EQ(target.GetFlags(), SORT_NOCASE);
    SStringArray moved(std::move(target));
    EXPECT_EQ(moved.GetCount(), 2);
    moved = std::move(source);
    EXPECT_EQ(Texts(moved), (std::vector<std::string>{"changed", "y"}));
}

TEST(StringArray, RemoveEqualDestroysMatchesEvenItsOwnArgument) {
    SStringArray array = MakeStrings({"a", "b", "a", "c", "a"});
    EXPECT_EQ(array.RemoveEqual(array.GetAt(0)), 3);
    EXPECT_EQ(Texts(array), (std::vector<std::string>{"b", "c"}));
    array.DeleteAt(0);
    EXPECT_EQ(Texts(array), (std::vector<std::string>{"c"}));
}

TEST(StringArray, JoinByTable) {
    const SStringArray array = MakeStrings({"a", "bb", "", "d"});
    // clang-format off
    const std::tuple<const char*, int, int, const char*> cases[] = {
        {", ", 0, -1, "a, bb, , d"}, {"", 0, -1, "abbd"}, {"|", 1, 2, "bb|"}, {"|", 3, 1, "d"},
        {"|", 2, 50, "|d"}, {"|", 0, 0, ""}, {"|", 4, -1, ""}, {"|", -1, 2, ""},
        {nullptr, 0, 2, "abb"}};
    // clang-format on
    for (auto [separator, start, count, joined] : cases) {
        EXPECT_STREQ(array.Join(separator, start, count).c_str(), joined) << start << " " << count;
    }
}

TEST(StringArray, Base64TextRoundTrip) {
    SStringArray array;
    for (const char* text : {"a", "hello", "Melkora Browser", "12 - Song.mp3", ""}) {
        SString* item = new SString(text);
        const SString stored = array.ItemToText(item, 0, nullptr);
        SString* restored = nullptr;
        array.ItemFromText(restored, stored.c_str(), 0, nullptr);
        EXPECT_STREQ(restored->c_str(), text);
        delete restored;
        delete item;
    }
    // "?>?" encodes with "/", which the stored form does not read back.
    SString* item = new SString("?>?");
    const SString stored = array.ItemToText(item, 0, nullptr);
    array.ItemFromText(item, stored.c_str(), 0, nullptr);
    EXPECT_STRNE(item->c_str(), "?>?");
    delete item;
    EXPECT_STREQ(SArray<int>().ItemToText(5, 0, nullptr).c_str(), "");
}

TEST(Wildcards, MatchByTable) {
    // At the end of the text only a single final star still matches, so
    // "**" does not match "" and "a**" does not match "a".
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"", "", true},         {"", "a", false},           {"a", "", false},
        {"*", "", true},        {"*", "abc", true},         {"abc", "abc", true},
        {"abc", "abd", false},  {"ab", "abc", false},       {"A*", "abc", false},
        {"*c", "abc", true},    {"*b", "abc", false},       {"a*", "a", true},
        {"a*", "abc", true},    {"a*", "ba", false},        {"a*c", "abbc", true},
        {"a*c", "abcd", false}, {"*ab", "abab", true},      {"*ab", "aba", false},
        {"?", "a", true},       {"?", "", false},           {"?", "ab", false},
        {"a?c", "abc", true},   {"*?", "x", true},          {"*??", "x", false},
        {"***a", "xa", true},   {"*ab*ab", "xabyab", true}, {"a*b*c", "aXbYbZc", true},
        {"*aab", "aaab", true}, {"*abc", "ababc", true},    {"*a?c", "xabxabc", true},
        {"**", "", false},      {"**", "x", true},          {"a**", "a", false},
        {"a**", "ab", true},    {"*b**", "ab", false},      {"*b*", "ab", true}};
    for (auto [pattern, text, matches] : cases) {
        EXPECT_EQ(MatchWildcardText(text, pattern), matches) << pattern << " on " << text;
    }
    // Other star and one characters, or none.
    EXPECT_TRUE(MatchWildcardText("xxab", "%a_", '%', '_'));
    EXPECT_TRUE(MatchWildcardText("a*zz", "a*%", '%', '_'));
    EXPECT_FALSE(MatchWildcardText("abzz", "a*%", '%', '_'));
    EXPECT_FALSE(MatchWildcardText("ab", "a?", '%', '_'));
    EXPECT_TRUE(MatchWildcardText("a?", "a?", 0, 0));
    EXPECT_FALSE(MatchWildcardText("ab", "a*", 0, 0));
}

TEST(Wildcards, ManyStarsOnLongTextStayQuick) {
    const std::string text(200000, 'b');
    EXPECT_FALSE(MatchWildcardText(text.c_str(), "**********************************a"));
    EXPECT_TRUE(MatchWildcardText((text + "a").c_str(), "*b*b*b*b*b*b*b*b*b*b*b*b*b*a"));
    const std::string as(3000, 'a');
    EXPECT_FALSE(MatchWildcardText(as.c_str(), ("*" + std::string(200, 'a') + "b").c_str()));
}

TEST(Wildcards, ArrayCountsAndAppendsIndexes) {
    const SStringArray array = MakeStrings({"song.mp3", "cover.png", "track.MP3", "a.mp3"});
    SArray<int> indexes;
    indexes.Add(-1);
    EXPECT_EQ(array.MatchWildcards("*.mp3", &indexes), 2);
    EXPECT_EQ(Items(indexes), (std::vector<int>{-1, 0, 3}));
    EXPECT_EQ(array.MatchWildcards("?????.*"), 2);
    EXPECT_EQ(array.MatchWildcards(nullptr), 0);
}

namespace {

// The order the shuffle must give for a seed: the same draws taken by hand.
std::vector<int> ExpectedShuffle(std::vector<int> items, unsigned seed) {
    SRandom random(seed);
    std::vector<int> order;
    while (!items.empty()) {
        int index = int(random.Next() / 32768.0 * double(items.size()));
        order.push_back(items[size_t(index)]);
        items.erase(items.begin() + index);
    }
    return order;
}

TEST(ArrayShuffle, FollowsTheGeneratorDrawByDraw) {
    SeedRandom(12345);
    SArray<int> array = Make({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    array.Shuffle();
    EXPECT_EQ(Items(array), ExpectedShuffle({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 12345));
    // Seed 1 draws 41, 18467, 6334, 26500: indexes 0, 1, 0, 0 of 4, 3, 2, 1.
    SeedRandom(1);
    SArray<int> four = Make({10, 20, 30, 40});
    four.Shuffle();
    EXPECT_EQ(Items(four), (std::vector<int>{10, 30, 20, 40}));
}

TEST(ArrayShuffle, TouchesOnlyTheRangeAndKeepsEveryItem) {
    SeedRandom(7);
    SArray<int> array = Make({1, 2, 3, 4, 5, 6});
    array.Shuffle(2, 5);
    std::vector<int> items = Items(array);
    EXPECT_EQ(items[0], 1);
    EXPECT_EQ(items[1], 2);
    EXPECT_EQ(items[5], 6);
    std::vector<int> middle(items.begin() + 2, items.begin() + 5);
    std::sort(middle.begin(), middle.end());
    EXPECT_EQ(middle, (std::vector<int>{3, 4, 5}));
    SArray<int> empty;
    empty.Shuffle();
    EXPECT_EQ(empty.GetCount(), 0);
}

TEST(ArrayShuffle, StringArrayKeepsOwnership) {
    SeedRandom(99);
    SStringArray array = MakeStrings({"a", "b", "c"});
    array.Shuffle();
    std::vector<std::string> texts;
    for (int i = 0; i < array.GetCount(); ++i) {
        texts.push_back(array.GetText(i).c_str());
    }
    std::sort(texts.begin(), texts.end());
    EXPECT_EQ(texts, (std::vector<std::string>{"a", "b", "c"}));
}

} // namespace

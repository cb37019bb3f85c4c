#include "mc/McDArray.h"
#include "mc/McHandable.h"
#include "mc/McHandle.h"
#include "mc/McListStack.h"
#include "mc/McString.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

namespace {

struct Megabyte
{
    char bytes[1 << 20];
};

} // namespace

TEST(McDArray, FollowsAVectorThroughRandomEdits)
{
    std::mt19937 random(7);
    McDArray<McString> array;
    std::vector<std::string> reference;
    for (int step = 0; step < 3000; step++) {
        const std::string value = std::to_string(random() % 100);
        const int n = int(reference.size());
        const int at = n ? int(random() % (n + 1)) : 0;
        switch (random() % 6) {
        case 0:
        case 1:
            array.append(McString(value));
            reference.push_back(value);
            break;
        case 2:
            array.insert(at, 2);
            reference.insert(reference.begin() + at, 2, "");
            break;
        case 3:
            if (at < n) {
                array.remove(at);
                reference.erase(reference.begin() + at);
            }
            break;
        case 4:
            if (n > 0) {
                EXPECT_EQ(array.pop(), McString(reference.back()));
                reference.pop_back();
            }
            break;
        default:
            if (n > 0) {
                array.append(array[at % n]);
                reference.push_back(std::string(reference[at % n]));
            }
        }
        ASSERT_EQ(array.size(), int(reference.size()));
    }
    for (int i = 0; i < array.size(); i++) EXPECT_STREQ(array[i], reference[i].c_str());
}

TEST(McDArray, GrowsByHalfOrToTheNeed)
{
    McDArray<int> array(10);
    array.append(1);
    EXPECT_EQ(array.capacity(), 15);
    array.resize(40);
    EXPECT_EQ(array.capacity(), 40);
    array.append(array);
    EXPECT_EQ(array.capacity(), 80);
    EXPECT_EQ(array.size(), 80);
    EXPECT_EQ(array[50], 1);
    array.resize(3);
    array.resize(60);
    EXPECT_EQ(array[50], 0) << "elements that come back are new";
}

TEST(McDArray, ReportsTheSizeThatCouldNotBeHadAndKeepsItsContent)
{
    McDArray<Megabyte> array(1);
    array[0].bytes[5] = 'x';
    try {
        array.resize(INT_MAX);
        FAIL() << "no exception";
    } catch (const McMemoryException& e) {
        EXPECT_EQ(e.size(), (1ul << 20) * INT_MAX);
    }
    ASSERT_EQ(array.size(), 1);
    EXPECT_EQ(array[0].bytes[5], 'x');
}

TEST(McDArray, ReleasesTheHandlesThatItHolds)
{
    auto* object = new McHandable;
    McHandle<McHandable> keeper(object);
    {
        McDArray<McHandle<McHandable>> array;
        for (int i = 0; i < 20; i++) array.append(keeper);
        McDArray<McDArray<McHandle<McHandable>>> nested;
        nested.append(array);
        EXPECT_EQ(object->refCount(), 41);
        array.remove(3, 5);
        EXPECT_EQ(object->refCount(), 36);
        EXPECT_FALSE(nested[0] == array);
    }
    EXPECT_EQ(object->refCount(), 1);
}

TEST(McListStack, GivesTheLastFirst)
{
    McListStack<int> stack;
    for (int i = 0; i < 100; i++) stack.push(i);
    for (int i = 99; i >= 0; i--) EXPECT_EQ(stack.pop(), i);
    EXPECT_TRUE(stack.isEmpty());
}

TEST(McString, ComparesBytesAndFormats)
{
    EXPECT_TRUE(McString("\xc3\xa4") == "\xc3\xa4");
    EXPECT_FALSE(McString("a") == "A");
    EXPECT_TRUE(McString(nullptr) == "");
    EXPECT_TRUE("x" + McString("y") + "z" == "xyz");
    const std::string longText(5000, 'q');
    EXPECT_EQ(McString::printf("%s-%d", longText.c_str(), 7), McString(longText + "-7"));
    EXPECT_EQ(McString::printf("%s", "").length(), 0);
}

#include "skin_language/grow_array.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace {

struct Record {
    char name[260];
    std::int32_t number;
};

void appendNumbers(GrowArray<int>& array, int count) {
    for (int i = 0; i < count; ++i)
        ASSERT_TRUE(array.append(i));
}

void expectNumbers(const GrowArray<int>& array, int count) {
    ASSERT_EQ(array.count, count);
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(array[i], i);
}

TEST(GrowArray, StartsEmptyWithRoomForThirtyTwoItems) {
    const GrowArray<int> array;
    EXPECT_NE(array.items, nullptr);
    EXPECT_EQ(array.count, 0);
    EXPECT_EQ(array.capacity, 32);
    EXPECT_EQ(array.factor, 1);
    EXPECT_EQ(array.step, 16);
}

TEST(GrowArray, HoldsItemsCountCapacityFactorAndStepInThisOrder) {
    using Array = GrowArray<int>;
    static_assert(std::is_standard_layout_v<Array>);
    EXPECT_EQ(offsetof(Array, items), 0u);
    EXPECT_EQ(offsetof(Array, count), sizeof(void*));
    EXPECT_EQ(offsetof(Array, capacity), sizeof(void*) + 8);
    EXPECT_EQ(offsetof(Array, factor), sizeof(void*) + 16);
    EXPECT_EQ(offsetof(Array, step), sizeof(void*) + 24);
    EXPECT_EQ(sizeof(Array), sizeof(void*) + 32);
}

TEST(GrowArray, KeepsItsBlockForThirtyTwoItems) {
    GrowArray<int> array;
    const int* block = array.items;
    appendNumbers(array, 32);
    EXPECT_EQ(array.items, block);
    EXPECT_EQ(array.capacity, 32);
    expectNumbers(array, 32);
}

TEST(GrowArray, GrowsBySixteenAtTheThirtyThirdItem) {
    GrowArray<int> array;
    appendNumbers(array, 33);
    EXPECT_EQ(array.capacity, 48);
    expectNumbers(array, 33);
}

TEST(GrowArray, GrowsAgainAtTheFortyNinthAndTheSixtyFifthItem) {
    GrowArray<int> array;
    appendNumbers(array, 48);
    EXPECT_EQ(array.capacity, 48);
    ASSERT_TRUE(array.append(48));
    EXPECT_EQ(array.capacity, 64);
    for (int i = 49; i < 65; ++i)
        ASSERT_TRUE(array.append(i));
    EXPECT_EQ(array.capacity, 80);
    expectNumbers(array, 65);
}

TEST(GrowArray, GrowsByItsFactorAndItsStep) {
    GrowArray<int> array;
    array.factor = 2;
    array.step = 5;
    appendNumbers(array, 70);
    EXPECT_EQ(array.capacity, (32 * 2 + 5) * 2 + 5);
    expectNumbers(array, 70);
}

TEST(GrowArray, KeepsItsRoomWhenItIsCleared) {
    GrowArray<int> array;
    appendNumbers(array, 40);
    const int* block = array.items;
    array.clear();
    EXPECT_EQ(array.count, 0);
    EXPECT_EQ(array.capacity, 48);
    EXPECT_EQ(array.items, block);
    appendNumbers(array, 3);
    expectNumbers(array, 3);
}

TEST(GrowArray, CopiesWholeRecords) {
    GrowArray<Record> array;
    for (std::int32_t i = 0; i < 50; ++i)
        ASSERT_TRUE(array.append({.name = {'n', static_cast<char>('0' + i), '\0'}, .number = i}));
    ASSERT_EQ(array.count, 50);
    for (std::int32_t i = 0; i < 50; ++i) {
        EXPECT_EQ(array[i].name[1], '0' + i);
        EXPECT_EQ(array[i].name[259], '\0');
        EXPECT_EQ(array[i].number, i);
    }
}

TEST(GrowArray, MayBeGivenOneOfItsOwnItemsWhileItGrows) {
    GrowArray<int> array;
    appendNumbers(array, 32);
    ASSERT_TRUE(array.append(array[7]));
    EXPECT_EQ(array.capacity, 48);
    EXPECT_EQ(array[32], 7);
}

TEST(GrowArray, CanBeWalkedInOrder) {
    GrowArray<int> array;
    appendNumbers(array, 5);
    int expected = 0;
    for (int& item : array)
        EXPECT_EQ(item, expected++);
    EXPECT_EQ(expected, 5);
}

} // namespace

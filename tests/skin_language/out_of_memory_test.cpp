// What the reader and the evaluator do when memory runs out. The linker sends every malloc of this program
// here.
#include "skin_language/expression.h"
#include "skin_language/xml_reader.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
}

namespace {

constexpr long plenty = std::numeric_limits<long>::max();

long allocationsLeft = plenty;
long recordsAllocated = 0;

/// Whether a request for so many bytes is granted. Compilers make a malloc that is filled with zeros a
/// calloc, so records of the reader come either way.
bool grants(std::size_t bytes) {
    recordsAllocated += bytes == sizeof(XmlNode);
    if (allocationsLeft == plenty)
        return true;
    if (allocationsLeft == 0)
        return false;
    --allocationsLeft;
    return true;
}

/// Memory is out after `allocations` more, until the object goes.
class MemoryFor {
  public:
    explicit MemoryFor(long allocations) { allocationsLeft = allocations; }
    ~MemoryFor() { allocationsLeft = plenty; }
};

/// Holds every record that the reader has kept for later trees, so that the next element needs memory.
class HoldOfAllKeptRecords {
  public:
    HoldOfAllKeptRecords() {
        const long before = recordsAllocated;
        while (recordsAllocated == before) {
            XmlNode* node = nullptr;
            xmlParseNode("<a/>", 0, &node);
            node->next = held_;
            held_ = node;
        }
    }
    ~HoldOfAllKeptRecords() { xmlFreeNode(held_); }

  private:
    XmlNode* held_ = nullptr;
};

} // namespace

extern "C" {
void* __wrap_malloc(std::size_t size) {
    return grants(size) ? __real_malloc(size) : nullptr;
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return grants(count * size) ? __real_calloc(count, size) : nullptr;
}
}

namespace {

TEST(XmlOutOfMemory, LeavesTheSlotUntouchedWhenThereIsNoneForTheElement) {
    const HoldOfAllKeptRecords hold;
    XmlNode unrelated;
    XmlNode* slot = &unrelated;
    const MemoryFor none(0);
    EXPECT_EQ(xmlParseNode("<a/>", 0, &slot), -1);
    EXPECT_EQ(slot, &unrelated);
}

TEST(XmlOutOfMemory, FailsTheParseAtEveryAllocationAndLosesNothing) {
    const char* text = R"(<a b="1" c=""><d>one</d>two<e f="3"/>three</a>)";
    long allocations = 0;
    for (bool understood = false; !understood; ++allocations) {
        const HoldOfAllKeptRecords hold;
        XmlNode* root = nullptr;
        {
            const MemoryFor some(allocations);
            understood = xmlParseNode(text, 0, &root) != -1;
        }
        xmlFreeNode(root);
    }
    // Three elements with name, one of them with two texts and one with one, three attributes with name and
    // two of them with a value: the parse that went through was the one that had all of these.
    EXPECT_EQ(allocations - 1, 3 * 2 + 3 + 3 * 2 + 2);
}

TEST(XmlOutOfMemory, GivesNoTextOfAFile) {
    const MemoryFor none(0);
    EXPECT_EQ(xmlReadFile(QUILLON_SOURCE "/tests/skin_language/out_of_memory_test.cpp"), nullptr);
}

TEST(ExpressionOutOfMemory, RefusesAConstantThatFindsNoRoom) {
    ExprTable table;
    char text[] = "aa = 1";
    double value = 0.0;
    int position = 0;
    for (int i = 0; i < 32; ++i) {
        text[0] = static_cast<char>('a' + i % 26);
        text[1] = static_cast<char>('a' + i / 26);
        position = 0;
        ASSERT_TRUE(exprEvaluate(&table, text, &position, &value));
    }
    {
        const MemoryFor none(0);
        position = 0;
        value = 5.0;
        EXPECT_FALSE(exprEvaluate(&table, "new = 1", &position, &value));
    }
    EXPECT_EQ(value, 5.0);
    EXPECT_EQ(position, 0);
    EXPECT_EQ(table.count, 32);
    EXPECT_EQ(table.capacity, 32);
    EXPECT_FALSE(exprLookup(&table, "new", &value));
    EXPECT_TRUE(exprEvaluate(&table, "new = 1", &position, &value));
    EXPECT_EQ(table.count, 33);
}

TEST(GrowArrayOutOfMemory, StartsWithoutRoomAndFindsItLater) {
    allocationsLeft = 0;
    GrowArray<int> array;
    allocationsLeft = plenty;
    EXPECT_EQ(array.capacity, 0);
    EXPECT_EQ(array.count, 0);
    ASSERT_TRUE(array.append(7));
    EXPECT_EQ(array.capacity, 16);
    EXPECT_EQ(array[0], 7);
}

TEST(XmlOutOfMemory, ReadsNoFileWithoutRoomForIt) {
    const char* path = QUILLON_SOURCE "/skins/skin/skin.xml";
    {
        const MemoryFor none(0);
        EXPECT_EQ(xmlReadFile(path), nullptr);
        EXPECT_EQ(xmlParseFile(path), nullptr);
    }
    XmlNode* root = xmlParseFile(path);
    EXPECT_NE(root, nullptr);
    xmlFreeNode(root);
}

} // namespace

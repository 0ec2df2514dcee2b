#include "skin_language/xml_reader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>

namespace {

struct Free {
    void operator()(char* text) const { std::free(text); }
};
struct FreeTree {
    void operator()(XmlNode* node) const { xmlFreeNode(node); }
};
using Text = std::unique_ptr<char, Free>;
using Tree = std::unique_ptr<XmlNode, FreeTree>;

/// A folder of its own for each test, since several runs may share the machine.
class XmlFile : public testing::Test {
  protected:
    XmlFile() {
        std::random_device random;
        do
            folder_ = std::filesystem::temp_directory_path() / ("skin_reader_" + std::to_string(random()));
        while (!std::filesystem::create_directory(folder_));
    }
    ~XmlFile() override { std::filesystem::remove_all(folder_); }

    std::string fileHolding(const std::string& bytes) const {
        const std::filesystem::path path = folder_ / "skin.xml";
        std::ofstream(path, std::ios::binary) << bytes;
        return path.string();
    }

    std::filesystem::path folder_;
};

TEST_F(XmlFile, IsReadWholeWithANulBehindIt) {
    const Text text(xmlReadFile(fileHolding("<a>\n text</a>").c_str()));
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text.get(), "<a>\n text</a>");
}

TEST_F(XmlFile, KeepsBytesBehindANulOfItsOwn) {
    const std::string bytes("<a/>\0<b/>", 9);
    const Text text(xmlReadFile(fileHolding(bytes).c_str()));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::string(text.get(), bytes.size() + 1), bytes + '\0');
}

TEST_F(XmlFile, MayBeEmptyToRead) {
    const Text text(xmlReadFile(fileHolding("").c_str()));
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text.get(), "");
}

TEST_F(XmlFile, MayBeLargerThanAnyBufferOfTheSystem) {
    const std::string bytes(1000000, 'x');
    const Text text(xmlReadFile(fileHolding(bytes).c_str()));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text.get(), bytes);
}

TEST_F(XmlFile, GivesNoTextWhenItCannotBeOpened) {
    EXPECT_EQ(xmlReadFile((folder_ / "missing.xml").string().c_str()), nullptr);
}

TEST_F(XmlFile, GivesNoTextWhenItIsAFolder) {
    EXPECT_EQ(xmlReadFile(folder_.string().c_str()), nullptr);
}

TEST_F(XmlFile, IsParsedToItsRoot) {
    const Tree root(xmlParseFile(fileHolding("\r\n<GUI>\r\n<knob x=\"1\"/>\r\n</GUI>\r\n").c_str()));
    ASSERT_NE(root, nullptr);
    EXPECT_STREQ(root->name, "GUI");
    EXPECT_EQ(root->text, nullptr);
    ASSERT_NE(root->child, nullptr);
    EXPECT_STREQ(root->child->name, "knob");
    EXPECT_STREQ(root->child->attrs->value, "1");
}

TEST_F(XmlFile, GivesNoTreeWhenItCannotBeOpened) {
    EXPECT_EQ(xmlParseFile((folder_ / "missing.xml").string().c_str()), nullptr);
}

TEST_F(XmlFile, GivesNoTreeWhenItIsEmpty) {
    EXPECT_EQ(xmlParseFile(fileHolding("").c_str()), nullptr);
}

TEST_F(XmlFile, GivesNoTreeWhenItIsMalformed) {
    EXPECT_EQ(xmlParseFile(fileHolding("<GUI><knob/>").c_str()), nullptr);
    EXPECT_EQ(xmlParseFile(fileHolding("<?xml version=\"1.0\"?><GUI/>").c_str()), nullptr);
}

TEST_F(XmlFile, IsReadNoFurtherThanTheRoot) {
    const Tree root(xmlParseFile(fileHolding("<GUI/>\x1a <<<").c_str()));
    ASSERT_NE(root, nullptr);
    EXPECT_STREQ(root->name, "GUI");
}

} // namespace

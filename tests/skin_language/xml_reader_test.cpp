#include "skin_language/xml_reader.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstddef>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

/// One reading of a text, the tree released at the end. The reader sees a copy with exactly one byte behind
/// it, so that the address sanitizer notices a step too far.
class Reading {
  public:
    explicit Reading(const std::string& text, int position = 0) {
        std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
        end = xmlParseNode(exact.data(), position, &root);
    }
    ~Reading() { xmlFreeNode(root); }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    bool failed() const { return end == -1; }

    int end = 0;
    XmlNode* root = nullptr;
};

/// All parts one behind the other.
std::string joined(std::initializer_list<std::string_view> parts) {
    std::string all;
    for (const std::string_view part : parts)
        all += part;
    return all;
}

std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

/// The names of an element's children, a blank between two.
std::string childNames(const XmlNode* node) {
    std::string names;
    for (const XmlNode* child = node->child; child; child = child->next)
        names += joined({names.empty() ? "" : " ", child->name});
    return names;
}

/// Its attributes as `name=value`, a null value as `name`, a blank between two.
std::string attributes(const XmlNode* node) {
    std::string all;
    for (const XmlAttr* attribute = node->attrs; attribute; attribute = attribute->next) {
        all += joined({all.empty() ? "" : " ", attribute->name});
        if (attribute->value)
            all += joined({"=", attribute->value});
    }
    return all;
}

// Records

TEST(XmlRecords, KeepTheirFieldsInOrder) {
    EXPECT_EQ(offsetof(XmlNode, attrs), 0 * sizeof(void*));
    EXPECT_EQ(offsetof(XmlNode, next), 1 * sizeof(void*));
    EXPECT_EQ(offsetof(XmlNode, child), 2 * sizeof(void*));
    EXPECT_EQ(offsetof(XmlNode, name), 3 * sizeof(void*));
    EXPECT_EQ(offsetof(XmlNode, text), 4 * sizeof(void*));
    EXPECT_EQ(sizeof(XmlNode), 5 * sizeof(void*));
    EXPECT_EQ(offsetof(XmlAttr, name), 0 * sizeof(void*));
    EXPECT_EQ(offsetof(XmlAttr, value), 1 * sizeof(void*));
    EXPECT_EQ(offsetof(XmlAttr, next), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(XmlAttr), 3 * sizeof(void*));
}

TEST(XmlRecords, AreNullUntilSet) {
    const Reading reading("<a/>");
    ASSERT_EQ(reading.end, 4);
    EXPECT_EQ(reading.root->attrs, nullptr);
    EXPECT_EQ(reading.root->next, nullptr);
    EXPECT_EQ(reading.root->child, nullptr);
    EXPECT_STREQ(reading.root->name, "a");
    EXPECT_EQ(reading.root->text, nullptr);
}

TEST(XmlRecords, KeepAttributesInTheOrderOfTheFile) {
    const Reading reading(R"(<a z="1" m="2" a="3" m="4"/>)");
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(attributes(reading.root), "z=1 m=2 a=3 m=4");
}

TEST(XmlRecords, KeepChildrenInTheOrderOfTheFile) {
    const Reading reading("<GUI><z/><m></m><a/><m/></GUI>");
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(childNames(reading.root), "z m a m");
}

TEST(XmlRecords, HoldGrandchildrenBelowTheirParents) {
    const Reading reading(
        "<GUI><optionmenu><list><entry>One</entry><entry>Two</entry></list></optionmenu><knob/></GUI>");
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(childNames(reading.root), "optionmenu knob");
    const XmlNode* list = reading.root->child->child;
    EXPECT_EQ(childNames(reading.root->child), "list");
    EXPECT_EQ(childNames(list), "entry entry");
    EXPECT_STREQ(list->child->text, "One");
    EXPECT_STREQ(list->child->next->text, "Two");
    EXPECT_EQ(list->child->next->next, nullptr);
}

TEST(XmlRecords, PointNowhereIntoTheBuffer) {
    std::string text = R"(<a name="value">some text<b/></a>)";
    XmlNode* root = nullptr;
    ASSERT_EQ(xmlParseNode(text.c_str(), 0, &root), static_cast<int>(text.size()));
    text.assign(text.size(), '#');
    EXPECT_STREQ(root->name, "a");
    EXPECT_STREQ(root->text, "some text");
    EXPECT_EQ(attributes(root), "name=value");
    EXPECT_EQ(childNames(root), "b");
    xmlFreeNode(root);
}

TEST(XmlRecords, KeepHundredsOfAttributesAndChildren) {
    const Reading reading(joined({"<a ", repeated("b=\"1\" ", 500), ">", repeated("<c/>", 500), "</a>"}));
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(attributes(reading.root).size(), 500 * 4u - 1);
    EXPECT_EQ(childNames(reading.root).size(), 500 * 2u - 1);
}

// White space

TEST(XmlSkipSpace, StaysWhereThereIsNoWhiteSpace) {
    EXPECT_EQ(xmlSkipSpace(0, "a b"), 0);
    EXPECT_EQ(xmlSkipSpace(2, "a b"), 2);
}

TEST(XmlSkipSpace, PassesTabLineFeedCarriageReturnAndSpace) {
    EXPECT_EQ(xmlSkipSpace(1, "x\t\n\r y"), 5);
}

TEST(XmlSkipSpace, TakesNoOtherControlCharacterForWhiteSpace) {
    for (int byte = 1; byte < 256; ++byte) {
        const char text[] = {' ', static_cast<char>(byte), 'x', '\0'};
        const bool isSpace = byte == 9 || byte == 10 || byte == 13 || byte == 32;
        EXPECT_EQ(xmlSkipSpace(0, text), isSpace ? 2 : 1) << "byte " << byte;
    }
}

TEST(XmlSkipSpace, FailsAtTheEndOfTheText) {
    EXPECT_EQ(xmlSkipSpace(0, ""), -1);
    EXPECT_EQ(xmlSkipSpace(0, " \n"), -1);
    EXPECT_EQ(xmlSkipSpace(2, "ab"), -1);
}

TEST(XmlSkipSpace, KeepsAFailedPosition) {
    EXPECT_EQ(xmlSkipSpace(-1, "<a/>"), -1);
}

TEST(XmlWhiteSpace, MayStandBeforeTheRootElement) {
    const Reading reading("\r\n\t <a/>");
    EXPECT_EQ(reading.end, 8);
    EXPECT_STREQ(reading.root->name, "a");
}

TEST(XmlWhiteSpace, MayStandAroundEverythingInATagButTheName) {
    const Reading reading("<a\n b\t=\r \"1\"\n c = \"2\" / ></a>");
    EXPECT_EQ(reading.end, 25);
    EXPECT_EQ(attributes(reading.root), "b=1 c=2");
}

TEST(XmlWhiteSpace, MayNotStandBetweenTheBracketAndTheName) {
    EXPECT_TRUE(Reading("< a/>").failed());
}

TEST(XmlWhiteSpace, MayStandInAClosingTag) {
    EXPECT_EQ(Reading("<a></ a >").end, 9);
    EXPECT_EQ(Reading("<a></\n\ta\r\n>").end, 11);
}

TEST(XmlWhiteSpace, MayNotStandBetweenBracketAndSlashOfAClosingTag) {
    EXPECT_TRUE(Reading("<a>< /a>").failed());
}

// Names

TEST(XmlElementName, MayHoldLettersDigitsAndUnderscores) {
    const Reading reading("<aZ_09_x/>");
    EXPECT_EQ(reading.end, 10);
    EXPECT_STREQ(reading.root->name, "aZ_09_x");
}

TEST(XmlElementName, MayNotBeginWithAnUnderscore) {
    EXPECT_TRUE(Reading("<_a/>").failed());
}

TEST(XmlElementName, MayNotBeginWithADigit) {
    EXPECT_TRUE(Reading("<1a/>").failed());
}

TEST(XmlElementName, EndsAtColonHyphenAndPoint) {
    for (const char* text : {"<a:b/>", "<a-b/>", "<a.b/>"}) {
        const Reading reading(text);
        EXPECT_EQ(reading.end, 2) << text;
        EXPECT_STREQ(reading.root->name, "a") << text;
    }
}

TEST(XmlElementName, KeepsTheSpellingOfTheOpeningTag) {
    const Reading reading("<OptionMenu></OPTIONMENU>");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->name, "OptionMenu");
}

TEST(XmlElementName, HasNoLimitInAnEmptyElement) {
    const std::string name(5000, 'n');
    const Reading reading(joined({"<", name, "/>"}));
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(reading.root->name, name);
}

TEST(XmlElementName, HasNoLettersBeyondAsciiUnderAnyLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", "C.UTF-8", "", "de_DE.ISO-8859-1", "de_DE.UTF-8", "tr_TR.UTF-8"}) {
        if (!std::setlocale(LC_ALL, locale))
            continue;
        for (int byte = 128; byte < 256; ++byte) {
            const std::string letter(1, static_cast<char>(byte));
            EXPECT_TRUE(Reading(joined({"<", letter, "/>"})).failed())
                << "byte " << byte << " under " << locale;
            EXPECT_EQ(Reading(joined({"<a", letter, "/>"})).end, 2) << "byte " << byte << " under " << locale;
        }
        EXPECT_EQ(Reading("<ISKIN></iskin>").end, 15) << locale;
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(XmlAttributeName, MayBeginWithAnUnderscore) {
    const Reading reading(R"(<a _b="1"/>)");
    EXPECT_EQ(reading.end, 11);
    EXPECT_EQ(attributes(reading.root), "_b=1");
}

TEST(XmlAttributeName, MayHoldLettersDigitsAndUnderscores) {
    const Reading reading(R"(<a b_2Z="1"/>)");
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(attributes(reading.root), "b_2Z=1");
}

TEST(XmlAttributeName, EndsAtColonHyphenAndPoint) {
    for (const char* text : {R"(<a b:c="1"/>)", R"(<a b-c="1"/>)", R"(<a b.c="1"/>)"}) {
        const Reading reading(text);
        EXPECT_EQ(reading.end, 4) << text;
        EXPECT_EQ(attributes(reading.root), "") << text;
    }
}

TEST(XmlAttributeName, HasNoLimit) {
    const std::string name(5000, 'n');
    const Reading reading(joined({"<a ", name, "=\"1\"/>"}));
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(reading.root->attrs->name, name);
}

TEST(XmlAttributeName, MayBeGivenTwice) {
    const Reading reading(R"(<a b="1" b="2"/>)");
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(attributes(reading.root), "b=1 b=2");
}

TEST(XmlAttributeName, IsDroppedWithoutAnEqualsSign) {
    const Reading reading(R"(<a b c="1"/>)");
    EXPECT_EQ(reading.end, 12);
    EXPECT_EQ(attributes(reading.root), "c=1");
}

TEST(XmlAttributeName, IsDroppedAtTheEndOfATag) {
    const Reading empty("<a b/>");
    EXPECT_EQ(empty.end, 6);
    EXPECT_EQ(empty.root->attrs, nullptr);
    const Reading content("<a b c>x</a>");
    EXPECT_EQ(content.end, 12);
    EXPECT_EQ(content.root->attrs, nullptr);
    EXPECT_STREQ(content.root->text, "x");
}

// Values

TEST(XmlValue, IsNullWhenEmpty) {
    const Reading reading(R"(<a b=""/>)");
    EXPECT_EQ(reading.end, 9);
    ASSERT_NE(reading.root->attrs, nullptr);
    EXPECT_STREQ(reading.root->attrs->name, "b");
    EXPECT_EQ(reading.root->attrs->value, nullptr);
    EXPECT_EQ(reading.root->attrs->next, nullptr);
}

TEST(XmlValue, KeepsABlank) {
    const Reading reading(R"(<a b=" "/>)");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->attrs->value, " ");
}

TEST(XmlValue, MayHoldAGreaterThanSign) {
    const Reading reading(R"(<a x="1>2"/>)");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->attrs->value, "1>2");
}

TEST(XmlValue, TakesEveryByteButTheQuoteLiterally) {
    std::string value;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '"')
            value += static_cast<char>(byte);
    const Reading reading(joined({"<a b=\"", value, "\"/>"}));
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(reading.root->attrs->value, value);
}

TEST(XmlValue, KeepsEntitiesAsTheyStand) {
    const Reading reading(R"(<a b="&amp;">&lt;&amp;</a>)");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->attrs->value, "&amp;");
    EXPECT_STREQ(reading.root->text, "&lt;&amp;");
}

TEST(XmlValue, MayFollowThePreviousOneAtOnce) {
    const Reading reading(R"(<a b="1"c="2"/>)");
    EXPECT_EQ(reading.end, 15);
    EXPECT_EQ(attributes(reading.root), "b=1 c=2");
}

TEST(XmlValue, MayNotStandInSingleQuotes) {
    EXPECT_TRUE(Reading("<a b='1'/>").failed());
}

TEST(XmlValue, MayNotStandWithoutQuotes) {
    EXPECT_TRUE(Reading("<a b=1/>").failed());
    EXPECT_TRUE(Reading("<a b=/>").failed());
}

TEST(XmlValue, NeedsItsClosingQuote) {
    EXPECT_TRUE(Reading("<a b=\"1/>").failed());
    EXPECT_TRUE(Reading("<a b=\"").failed());
    EXPECT_TRUE(Reading("<a b=\"1\" c=\"><d/></a>").failed());
}

// Ends of a tag

TEST(XmlTagEnd, OfAnEmptyElementLeadsBehindTheBracket) {
    EXPECT_EQ(Reading("<a/>").end, 4);
    EXPECT_EQ(Reading("<a />").end, 5);
    EXPECT_EQ(Reading("<a/ \n>").end, 6);
}

TEST(XmlTagEnd, OfAnElementWithContentLeadsBehindTheClosingTag) {
    EXPECT_EQ(Reading("<a></a>").end, 7);
    EXPECT_EQ(Reading("<a>text</a>").end, 11);
}

TEST(XmlTagEnd, ByAnyOtherByteIsSilentSuccessAtThatByte) {
    const Reading reading(R"(<a 1="2"/>)");
    EXPECT_EQ(reading.end, 3);
    EXPECT_STREQ(reading.root->name, "a");
    EXPECT_EQ(reading.root->attrs, nullptr);
    EXPECT_EQ(reading.root->text, nullptr);
    EXPECT_EQ(reading.root->child, nullptr);
}

TEST(XmlTagEnd, ByAnyOtherByteKeepsTheAttributesBefore) {
    const Reading reading(R"(<a b="1" !c="2">text</a>)");
    EXPECT_EQ(reading.end, 9);
    EXPECT_EQ(attributes(reading.root), "b=1");
    EXPECT_EQ(reading.root->text, nullptr);
}

TEST(XmlTagEnd, ByAnyOtherByteLooksForNoClosingTag) {
    // The closing tag of the element that ended silently meets the parent's name.
    EXPECT_TRUE(Reading("<p><a !></a></p>").failed());
}

TEST(XmlTagEnd, ByAnyOtherByteMakesTheRestTextOfTheParent) {
    const Reading reading(R"(<p><a 1="2"/> tail <b/></p>)");
    EXPECT_EQ(reading.end, 27);
    EXPECT_EQ(childNames(reading.root), "a b");
    EXPECT_STREQ(reading.root->text, R"(1="2"/> tail )");
}

TEST(XmlTagEnd, ByASlashWithoutABracketIsSilentSuccessAtTheSlash) {
    EXPECT_EQ(Reading("<a /b/>").end, 3);
    EXPECT_EQ(Reading("<a / \"x\">").end, 3);
}

TEST(XmlTagEnd, ByAnOpeningBracketIsSilentSuccessToo) {
    const Reading reading("<p><a<b/></p>");
    EXPECT_EQ(reading.end, 13);
    EXPECT_EQ(childNames(reading.root), "a b");
    EXPECT_EQ(reading.root->text, nullptr);
}

TEST(XmlTagEnd, IsMissedWhenTheTextEndsInsideATag) {
    for (const char* text :
         {"<a", "<a ", "<a b", "<a b ", "<a b=", "<a b= ", "<a b=\"1\"", "<a b=\"1\" ", "<a/", "<a/ "})
        EXPECT_TRUE(Reading(text).failed()) << text;
}

// Content

TEST(XmlText, LosesLeadingAndKeepsTrailingWhiteSpace) {
    const Reading reading("<a> \t\r\n one  two \n</a>");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->text, "one  two \n");
}

TEST(XmlText, IsTheLastOfSeveralRuns) {
    const Reading reading("<a>  hello  <b/> world </a>");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->text, "world ");
    EXPECT_EQ(childNames(reading.root), "b");
}

TEST(XmlText, IsNullWhenThereIsOnlyWhiteSpaceBetweenChildren) {
    const Reading reading("<a><b/>   </a>");
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(reading.root->text, nullptr);
}

TEST(XmlText, IsNotReplacedByWhiteSpace) {
    const Reading reading("<a>real<b/>  \n  <c/>\t</a>");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->text, "real");
}

TEST(XmlText, IsNullInAnElementWithoutContent) {
    const Reading reading("<a></a>");
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(reading.root->text, nullptr);
}

TEST(XmlText, MayHoldGreaterThanSignsQuotesAndSlashes) {
    const Reading reading("<a>x > \"y\" / 'z'</a>");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->text, "x > \"y\" / 'z'");
}

TEST(XmlText, OfAChildIsNotThatOfItsParent) {
    const Reading reading("<a>outer<b>inner</b></a>");
    ASSERT_FALSE(reading.failed());
    EXPECT_STREQ(reading.root->text, "outer");
    EXPECT_STREQ(reading.root->child->text, "inner");
}

TEST(XmlContent, NeedsItsEnd) {
    for (const char* text : {"<a>", "<a> ", "<a>text", "<a>text ", "<a><", "<a></", "<a></ ", "<a></a",
                             "<a></a ", "<a><b/>", "<a><b>", "<a><b></b>"})
        EXPECT_TRUE(Reading(text).failed()) << text;
}

// Closing tags

TEST(XmlClosingTag, IsComparedWithoutCase) {
    EXPECT_EQ(Reading("<A></a>").end, 7);
    EXPECT_EQ(Reading("<GUI></gui>").end, 11);
    EXPECT_EQ(Reading("<gui_1></GUI_1>").end, 15);
}

TEST(XmlClosingTag, WithAnotherNameFails) {
    EXPECT_TRUE(Reading("<A></b>").failed());
    EXPECT_TRUE(Reading("<a></ab>").failed());
    EXPECT_TRUE(Reading("<ab></a>").failed());
    EXPECT_TRUE(Reading("<a></>").failed());
}

TEST(XmlClosingTag, NotFollowedByABracketFails) {
    EXPECT_TRUE(Reading("<a></a b>").failed());
    EXPECT_TRUE(Reading("<a></a/>").failed());
    EXPECT_TRUE(Reading("<a></a-b>").failed());
}

TEST(XmlClosingTag, MayHaveANameOf255Bytes) {
    const std::string name(255, 'n');
    const Reading reading(joined({"<", name, "></", name, ">"}));
    ASSERT_FALSE(reading.failed());
    EXPECT_EQ(reading.root->name, name);
}

TEST(XmlClosingTagDeathTest, WithANameOf256BytesEndsTheProcess) {
    const std::string name(256, 'n');
    EXPECT_DEATH(Reading(joined({"<", name, "></", name, ">"})), "");
    EXPECT_DEATH(Reading(joined({"<a></", name, ">"})), "");
    EXPECT_DEATH(Reading(joined({"<a></", name})), "");
}

// Refusals

TEST(XmlRefusal, OfADeclaration) {
    EXPECT_TRUE(Reading(R"(<?xml version="1.0"?><a/>)").failed());
    EXPECT_TRUE(Reading("<a><?target?></a>").failed());
}

TEST(XmlRefusal, OfAComment) {
    EXPECT_TRUE(Reading("<a><!-- c --></a>").failed());
    EXPECT_TRUE(Reading("<!-- c --><a/>").failed());
}

TEST(XmlRefusal, OfADoctype) {
    EXPECT_TRUE(Reading("<!DOCTYPE a><a/>").failed());
}

TEST(XmlRefusal, OfACdataSection) {
    EXPECT_TRUE(Reading("<a><![CDATA[x]]></a>").failed());
}

TEST(XmlRefusal, OfAByteOrderMark) {
    EXPECT_TRUE(Reading("\xef\xbb\xbf<a/>").failed());
}

TEST(XmlRefusal, OfAnEmptyText) {
    EXPECT_TRUE(Reading("").failed());
    EXPECT_TRUE(Reading(" \r\n\t").failed());
}

TEST(XmlRefusal, OfTextBeforeTheRoot) {
    EXPECT_TRUE(Reading("x<a/>").failed());
}

TEST(XmlRefusal, OfALoneBracket) {
    EXPECT_TRUE(Reading("<").failed());
    EXPECT_TRUE(Reading("</a>").failed());
}

TEST(XmlRefusal, OfAFailingDescendantReachesTheRoot) {
    EXPECT_TRUE(Reading("<a><b><c><d x='1'/></c></b></a>").failed());
}

TEST(XmlRefusal, OfANegativePosition) {
    const Reading reading("<a/>", -1);
    EXPECT_TRUE(reading.failed());
    EXPECT_EQ(reading.root, nullptr);
}

// What a failure leaves to the caller

TEST(XmlFailure, ClearsTheSlotWhenTheTextDoesNotBeginAnElement) {
    for (const char* text : {"", "  ", "x", "<", "<1/>", "< a/>", "<!-- -->", "</a>"}) {
        XmlNode unrelated;
        XmlNode* slot = &unrelated;
        EXPECT_EQ(xmlParseNode(text, 0, &slot), -1) << text;
        EXPECT_EQ(slot, nullptr) << text;
    }
}

TEST(XmlFailure, LeavesTheTreeBuiltSoFarInTheSlot) {
    const Reading reading(R"(<a x="1" y="2"><b/>text<c></c><d></wrong></a>)");
    EXPECT_TRUE(reading.failed());
    ASSERT_NE(reading.root, nullptr);
    EXPECT_STREQ(reading.root->name, "a");
    EXPECT_EQ(attributes(reading.root), "x=1 y=2");
    EXPECT_STREQ(reading.root->text, "text");
    EXPECT_EQ(childNames(reading.root), "b c");
}

TEST(XmlFailure, DoesNotLinkTheAttributeThatFailed) {
    const Reading reading(R"(<a x="1" y='2'/>)");
    EXPECT_TRUE(reading.failed());
    ASSERT_NE(reading.root, nullptr);
    EXPECT_EQ(attributes(reading.root), "x=1");
}

// One element of a text

TEST(XmlParseNode, ReadsNothingBehindTheElement) {
    const Reading reading("<a/>trailing garbage");
    EXPECT_EQ(reading.end, 4);
    EXPECT_EQ(reading.root->next, nullptr);
}

TEST(XmlParseNode, GivesARootNoSiblings) {
    const Reading reading("<a></a><b/>");
    EXPECT_EQ(reading.end, 7);
    EXPECT_EQ(reading.root->next, nullptr);
}

TEST(XmlParseNode, StartsAtTheGivenPosition) {
    const Reading reading("<a/> <b/>", 4);
    EXPECT_EQ(reading.end, 9);
    EXPECT_STREQ(reading.root->name, "b");
}

TEST(XmlParseNode, CanReadElementAfterElement) {
    const char* text = "<a/> <b>x</b><c/>";
    std::string names;
    int position = 0;
    for (XmlNode* node = nullptr; (position = xmlParseNode(text, position, &node)) != -1; xmlFreeNode(node))
        names += node->name;
    EXPECT_EQ(names, "abc");
}

TEST(XmlParseNode, ReadsElementsNestedHundredsDeep) {
    const Reading reading(joined({repeated("<a>", 900), repeated("</a>", 900)}));
    EXPECT_EQ(reading.end, 900 * 7);
    int depth = 0;
    for (const XmlNode* node = reading.root; node; node = node->child)
        ++depth;
    EXPECT_EQ(depth, 900);
}

TEST(XmlParseNode, RefusesBottomlessNestingWithoutUsingUpTheStack) {
    EXPECT_TRUE(Reading(repeated("<a>", 1000000)).failed());
    EXPECT_TRUE(Reading(joined({repeated("<a>", 100000), repeated("</a>", 100000)})).failed());
}

TEST(XmlParseNode, GivesTheSameTreeToThreadsThatReadAtTheSameTime) {
    const auto readOften = [] {
        for (int i = 0; i < 500; ++i) {
            const Reading reading(R"(<GUI><knob x="1"/><list><entry>One</entry></list></GUI>)");
            ASSERT_FALSE(reading.failed());
            ASSERT_EQ(childNames(reading.root), "knob list");
            ASSERT_STREQ(reading.root->child->next->child->text, "One");
        }
    };
    std::thread other(readOften);
    readOften();
    other.join();
}

// Release

TEST(XmlFreeNode, TakesNull) {
    xmlFreeNode(nullptr);
}

TEST(XmlFreeNode, ReleasesTheSiblingsBehindTheNode) {
    // The leak checker tells if anything of the three stays behind.
    XmlNode* nodes[3] = {};
    for (XmlNode*& node : nodes)
        ASSERT_NE(xmlParseNode(R"(<a b="1" c=""><d>text</d>text</a>)", 0, &node), -1);
    nodes[0]->next = nodes[1];
    nodes[1]->next = nodes[2];
    xmlFreeNode(nodes[0]);
}

TEST(XmlFreeNode, IsNotHinderedByALongListOfSiblings) {
    const Reading reading(joined({"<a>", repeated("<b/>", 300000), "</a>"}));
    EXPECT_FALSE(reading.failed());
}

TEST(XmlFreeNode, KeepsTheRecordsForTheNextTree) {
    const auto recordsOfOneTree = [] {
        std::set<const void*> records;
        const Reading reading("<a><b/><c><d/></c></a>");
        XmlNode* const root = reading.root;
        for (const XmlNode* node : {root, root->child, root->child->next, root->child->next->child})
            records.insert(node);
        return records;
    };
    const std::set<const void*> first = recordsOfOneTree();
    EXPECT_EQ(first.size(), 4u);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(recordsOfOneTree(), first);
}

} // namespace

// What all kinds of objects have in common: tags that must be there, what is shown when one is missing or
// wrong, the order in which they are read, and constants.
#include "skin_window.h"

#include "skin/skin_object.h"
#include "skin/skin_table.h"
#include "skin_language/xml_reader.h"

#include "vstgui/lib/controls/cparamdisplay.h"
#include "vstgui/lib/controls/cslider.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <string_view>

namespace {

using skin::SkinContext;
using skin::SkinObject;
using test::Message;
using test::missingTag;
using test::wrongTag;
using VSTGUI::CRect;
using Messages = std::vector<Message>;

struct Tag {
    const char* name;
    const char* value;
    const char* object = ""; ///< what its faults name, if that is not the kind
};

/// A kind of object with all that can be said of it.
struct Kind {
    const char* name;
    std::vector<Tag> numbers;  ///< that must be there, in the order of reading
    std::vector<Tag> pictures; ///< that must be there; read after them
    std::vector<Tag> optional; ///< numbers, in the order of reading
    std::size_t late = 0;      ///< so many of the numbers are read behind the first of the optional ones
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

const std::vector<Tag> place{{"x", "3"}, {"y", "4"}, {"w", "30"}, {"h", "20"}};

std::vector<Tag> placeAnd(std::vector<Tag> more, const char* object = "") {
    std::vector<Tag> all = place;
    for (Tag& tag : all)
        tag.object = object;
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

std::vector<Tag> looks(const char* object, const char* styleObject = "") {
    return {{"style", "2", styleObject},
            {"font", "1", object},
            {"halign", "1", object},
            {"txtface", "1", object}};
}

const Kind kinds[] = {
    {"update", {{"src", "1"}, {"dst", "2"}}, {}, {}},
    {"slider",
     {{"x", "3"}, {"y", "4"}, {"len", "50"}, {"id", "5"}, {"style", "1"}},
     {{"bitmap_handle", "handle.png"}},
     {{"xoff", "6"}, {"yoff", "7"}, {"default", "0.5"}}},
    {"knob", placeAnd({{"id", "5"}}), {}, {{"xoff", "6"}, {"yoff", "7"}, {"default", "0.5"}}},
    {"onoff", {{"x", "3"}, {"y", "4"}, {"id", "5"}}, {{"bitmap_handle", "lamp.png"}}, {{"default", "0.5"}}},
    {"autodisp", placeAnd({{"id", "5"}, {"link", "6"}}), {}, looks("autodisp"), 1},
    {"display", placeAnd({{"id", "5"}}), {}, looks("autodisp")},
    {"anydisp", placeAnd({}, "display"), {}, looks("autodisp", "display")},
    {"optionmenu", placeAnd({{"id", "5"}}), {}, looks("optionmenu")},
    {"skinselector", placeAnd({}), {}, looks("optionmenu")},
    {"vswitch",
     {{"x", "3"}, {"y", "4"}, {"id", "5"}, {"entries", "5"}},
     {{"bitmap_handle", "film.png"}},
     {{"default", "0.5"}}},
    {"hswitch",
     {{"x", "3"}, {"y", "4"}, {"id", "5"}, {"entries", "5"}},
     {{"bitmap_handle", "film.png", "vswitch"}},
     {{"default", "0.5"}}},
    {"kick", {{"x", "3"}, {"y", "4"}, {"id", "5"}}, {{"bitmap_handle", "lamp.png"}}, {}},
    {"about", placeAnd({}), {{"bitmap_pop", "popped.png"}}, {}},
    {"vumeter",
     {{"x", "3"}, {"y", "4"}, {"id", "5"}, {"leds", "6"}, {"style", "1"}},
     {{"bitmap_off", "off.png"}, {"bitmap_on", "on.png"}},
     {}},
};

/// Those that are tested elsewhere: they need nothing, or they are this effect's own.
constexpr std::string_view kOtherKinds[] = {"CONSTANTS", "background", "ViewTaps", "NoteDisplay",
                                            "PresetsDisplay"};

TEST(KindsOfObjects, AreAllTestedForTheirTags) {
    for (const skin::KindRule& rule : skin::skinKinds()) {
        const auto isRule = [&](const Kind& kind) { return kind.name == std::string_view(rule.name); };
        EXPECT_TRUE(std::ranges::any_of(kinds, isRule) || std::ranges::count(kOtherKinds, rule.name))
            << rule.name;
    }
}

class Objects : public test::SkinWindow, public testing::WithParamInterface<Kind> {
  protected:
    const Kind& kind = GetParam();

    std::string nameInMessages(const Tag& tag) { return *tag.object ? tag.object : kind.name; }

    /// What must be there, in the order of reading.
    std::vector<Tag> required() {
        std::vector<Tag> all = kind.numbers;
        all.insert(all.end(), kind.pictures.begin(), kind.pictures.end());
        return all;
    }

    /// All numbers in the order of reading.
    std::vector<Tag> allNumbers() {
        std::vector<Tag> all = kind.numbers;
        all.insert(all.end() - static_cast<std::ptrdiff_t>(kind.late), kind.optional.begin(),
                   kind.optional.end());
        if (kind.late) // only the first of them stands there, the others at the end
            std::rotate(all.end() - static_cast<std::ptrdiff_t>(kind.late + kind.optional.size()) + 1,
                        all.end() - static_cast<std::ptrdiff_t>(kind.late), all.end());
        return all;
    }

    static std::string attribute(const std::string& name, const std::string& value) {
        return std::string(" ") + name + "=\"" + value + "\"";
    }

    static std::string capitals(std::string text) {
        for (char& byte : text)
            byte = static_cast<char>(std::toupper(byte));
        return text;
    }

    std::string element(const std::vector<Tag>& tags) {
        std::string text = std::string("<") + kind.name;
        for (const Tag& tag : tags)
            text += attribute(tag.name, tag.value);
        return text + "/>";
    }

    /// What has come of the object: a control or a link.
    std::size_t builtCount() {
        return editor->controls().size() + static_cast<std::size_t>(editor->updateLinks.count);
    }
};

TEST_P(Objects, AreBuiltFromTheTagsThatTheyMustHave) {
    open(element(required()));
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(builtCount(), 1U);
}

TEST_P(Objects, AreLostWithoutATagThatTheyMustHave) {
    for (const Tag& missing : required()) {
        SCOPED_TRACE(missing.name);
        std::vector<Tag> tags = required();
        std::erase_if(tags, [&](const Tag& tag) { return std::string(tag.name) == missing.name; });
        open(element(tags) + R"(<display x="0" y="0" w="9" h="9" id="1"/>)");
        EXPECT_EQ(takeMessages(), Messages{missingTag(missing.name, nameInMessages(missing))});
        EXPECT_EQ(builtCount(), 1U) << "the next object is read as ever";
    }
}

TEST_P(Objects, NameTheFirstOfTheirMissingTagsOnly) {
    std::vector<Tag> given;
    for (const Tag& first : required()) {
        open(element(given));
        EXPECT_EQ(takeMessages(), Messages{missingTag(first.name, nameInMessages(first))});
        EXPECT_EQ(builtCount(), 0U);
        given.push_back(first);
    }
}

TEST_P(Objects, AreLostWithANumberThatCannotBeCalculated) {
    for (std::size_t wrong = 0; wrong < kind.numbers.size(); ++wrong)
        for (const char* value : {"unknown", "1.2.3", "a = 3 * unknown"}) {
            std::vector<Tag> tags = required();
            tags[wrong].value = value;
            open(element(tags));
            EXPECT_EQ(takeMessages(), Messages{wrongTag(tags[wrong].name, nameInMessages(tags[wrong]))});
            EXPECT_EQ(builtCount(), 0U);
        }
}

TEST_P(Objects, AreBuiltThoughAnOptionalNumberCannotBeCalculated) {
    for (const Tag& optional : kind.optional) {
        std::vector<Tag> tags = required();
        tags.push_back({optional.name, "unknown"});
        open(element(tags));
        EXPECT_EQ(takeMessages(), Messages{wrongTag(optional.name, nameInMessages(optional))});
        EXPECT_EQ(builtCount(), 1U);
    }
}

TEST_P(Objects, ReadTheirTagsInOneOrderWhateverTheOrderInTheFile) {
    // Each number defines a constant which the next one needs; in the file they stand the other way round.
    const std::vector<Tag> numbers = allNumbers();
    std::string attributes;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::string mine = std::string("k") + std::to_string(i) + " = " + numbers[i].value;
        const std::string before = i == 0 ? std::string() : std::string(" + 0*k") + std::to_string(i - 1);
        attributes = attribute(numbers[i].name, mine + before) + attributes;
    }
    for (const Tag& picture : kind.pictures)
        attributes = attribute(picture.name, picture.value) + attributes;
    open(std::string("<") + kind.name + attributes + "/>");
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(builtCount(), 1U);
}

TEST_P(Objects, MayBeSpeltInCapitals) {
    std::string text = capitals(std::string("<") + kind.name);
    for (const Tag& tag : required())
        text += attribute(capitals(tag.name), tag.value);
    open(text + "/>");
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(builtCount(), 1U);
}

TEST_P(Objects, TakeTheFirstOfTwoEqualTags) {
    const Tag first = required().front();
    open(std::string("<") + kind.name + attribute(first.name, "unknown") + attribute(first.name, "1") + "/>");
    EXPECT_EQ(takeMessages(), Messages{wrongTag(first.name, nameInMessages(first))});
}

TEST_P(Objects, TellTheirFateToWhoeverBuildsMore) {
    open("");
    SkinContext context;
    skin::skinContextInit(&context, nullptr, false, editor);
    const auto build = [&](const std::string& text, const char* name) {
        XmlNode* node = nullptr;
        EXPECT_GT(xmlParseNode(text.c_str(), 0, &node), 0);
        SkinObject object(node);
        const int result = editor->createControls(name, &object, &context);
        xmlFreeNode(node);
        return result;
    };
    EXPECT_EQ(build(element(required()), kind.name), 1);
    EXPECT_EQ(build(element({}), kind.name), 0);
    EXPECT_EQ(build(element(required()), "unknown"), -1);
    skin::skinContextRelease(&context);
    EXPECT_EQ(takeMessages().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(, Objects, testing::ValuesIn(kinds),
                         [](const auto& kind) { return kind.param.name; });

class Skins : public test::SkinWindow {
  protected:
    /// The places of all controls.
    std::vector<CRect> places() {
        std::vector<CRect> found;
        for (VSTGUI::CControl* control : editor->controls())
            found.push_back(control->getViewSize());
        return found;
    }
};

// Faults

TEST_F(Skins, ShowAFaultForEachObjectAndGoOn) {
    open(R"(<knob/><knob x="1"/><display x="0" y="0" w="9" h="9" id="1"/><slider x="oops"/>)");
    EXPECT_EQ(takeMessages(),
              (Messages{missingTag("x", "knob"), missingTag("y", "knob"), wrongTag("x", "slider")}));
    EXPECT_EQ(editor->controls().size(), 1U);
}

TEST_F(Skins, NameObjectsInMessagesAsTheLanguageSpellsThem) {
    open(R"(<KNOB X="oops"/>)");
    EXPECT_EQ(takeMessages(), Messages{wrongTag("x", "knob")});
}

TEST_F(Skins, UseThePlaceForAnOffsetThatIsWrong) {
    open(
        R"(<slider x="10" y="20" len="62" id="6" style="1" xoff="oops" yoff="1.2.3" bitmap_handle="handle.png"/>)");
    EXPECT_EQ(takeMessages(), (Messages{wrongTag("xoff", "slider"), wrongTag("yoff", "slider")}));
    EXPECT_EQ(only<VSTGUI::CSlider>().getBackgroundOffset(), VSTGUI::CPoint(10, 20));
}

TEST_F(Skins, UseTheValueForADefaultThatIsWrong) {
    bench.effect().values[6] = 0.75f;
    open(R"(<knob x="0" y="0" w="9" h="9" id="6" default="oops"/>)");
    EXPECT_EQ(takeMessages(), Messages{wrongTag("default", "knob")});
    EXPECT_EQ(only<VSTGUI::CControl>().getDefaultValue(), 0.75f);
}

TEST_F(Skins, PassOverAWrongTagOfTheLooksAndReadTheOthers) {
    open(
        R"(<display x="0" y="0" w="9" h="9" id="1" font="oops" halign="oops" txtface="oops" fontcolor="010203"/>)");
    EXPECT_EQ(takeMessages(), (Messages{wrongTag("font", "autodisp"), wrongTag("halign", "autodisp"),
                                        wrongTag("txtface", "autodisp")}));
    EXPECT_EQ(only<VSTGUI::CParamDisplay>().getFontColor(), VSTGUI::CColor(1, 2, 3));
}

TEST_F(Skins, CheckATextFaceThatTheyDoNotUse) {
    open(
        R"(<display x="0" y="0" w="9" h="9" id="1" txtface="face = 7"/><knob x="face" y="0" w="9" h="9" id="1"/>)");
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(editor->controlAt(1)->getViewSize().left, 7);
}

TEST_F(Skins, RefuseADisplayOfAParameterFarBehindTheLast) {
    for (const char* link : {"22", "5000"}) {
        open(std::string(R"(<autodisp x="0" y="0" w="9" h="9" id="1" link=")") + link + "\"/>");
        EXPECT_EQ(takeMessages(), (Messages{{"Error attempting to link a display to an invalid parameter id",
                                             "Skin Error", platform::MessageIcon::error}}));
        EXPECT_TRUE(editor->controls().empty());
        EXPECT_EQ(editor->displayLinks.count, 0);
    }
}

TEST_F(Skins, NameTheHandleOfAControlThatFindsNoBackgroundAtAll) {
    const Messages notFound{{"Handle.PNG", "Bitmap not found"}};
    openAlone(R"(<slider x="0" y="0" len="50" id="1" style="1" bitmap_handle="Handle.PNG"/>)");
    EXPECT_EQ(takeMessages(), notFound);
    openAlone(R"(<knob x="0" y="0" w="9" h="9" id="1" bitmap_handle="Handle.PNG"/>)");
    EXPECT_EQ(takeMessages(), notFound);
    openAlone(R"(<knob x="0" y="0" w="9" h="9" id="1" stackbmp="y" bitmap_handle="Handle.PNG"/>)");
    EXPECT_EQ(takeMessages(), notFound);
    openAlone(R"(<knob x="0" y="0" w="9" h="9" id="1"/>)");
    EXPECT_EQ(takeMessages(), Messages{}) << "without a handle nothing is looked for";
    openAlone(R"(<slider x="0" y="0" len="50" id="1" style="1"/>)");
    EXPECT_EQ(takeMessages(), Messages{missingTag("bitmap_handle", "slider")});
    openAlone(R"(<knob x="0" y="0" w="9" h="9" id="1" bitmap_bk="plate.png" bitmap_handle="handle.png"/>)");
    EXPECT_EQ(takeMessages(), Messages{}) << "it has a background of its own, and no window";
    EXPECT_EQ(editor->frame, nullptr);
}

TEST_F(Skins, SayNothingOfMissingPictures) {
    open(R"(<slider x="0" y="0" len="50" id="1" style="1" bitmap_bk="none.png" bitmap_handle="none.png"/>
            <knob x="0" y="0" w="9" h="9" id="1" bitmap_bk="none.png" bitmap_handle="none.png"/>
            <onoff x="0" y="0" id="1" bitmap_handle="none.png"/>
            <vswitch x="0" y="0" id="1" entries="3" bitmap_handle="none.png"/>
            <kick x="0" y="0" id="1" bitmap_handle="none.png"/>
            <about x="0" y="0" w="9" h="9" bitmap_pop="none.png"/>
            <vumeter x="0" y="0" id="1" leds="3" style="1" bitmap_off="none.png" bitmap_on="none.png"/>
            <display x="0" y="0" w="9" h="9" id="1" bitmap_bk="none.png"/>)");
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(editor->controls().size(), 8U);
}

// Values

TEST_F(Skins, CalculateWithConstantsOfEarlierTags) {
    open(R"(<knob x="a=10" y="a+5" w="9" h="9" id="6"/>
            <knob h="9" y="A*3" x="b = a/4" w="9" id="6"/>)");
    EXPECT_EQ(places(), (std::vector{CRect(10, 15, 19, 24), CRect(2, 30, 11, 39)}));
    open(R"(<knob y="a+5" x="a=10" w="9" h="9" id="6"/>)");
    EXPECT_EQ(places(), std::vector{CRect(10, 15, 19, 24)}) << "x is read first, wherever it stands";
}

TEST_F(Skins, ForgetTheirConstantsBetweenWindows) {
    open(R"(<knob x="0" y="0" w="9" h="9" id="later = 1"/>)");
    open(R"(<knob x="later" y="0" w="9" h="9" id="1"/>)");
    EXPECT_EQ(takeMessages(), Messages{wrongTag("x", "knob")});
}

TEST_F(Skins, DefineConstantsInObjectsThatAreLost) {
    open(R"(<knob x="kept = 4" y="oops"/><knob x="kept" y="0" w="9" h="9" id="1"/>)");
    takeMessages();
    EXPECT_EQ(places(), std::vector{CRect(4, 0, 13, 9)});
}

TEST_F(Skins, TakeAnEmptyTagForNothing) {
    open(R"(<knob x="" y="" w="9" h="9" id=""/>)");
    EXPECT_EQ(places(), std::vector{CRect(0, 0, 9, 9)});
    EXPECT_EQ(editor->controlAt(0)->getTag(), 0);
    EXPECT_EQ(takeMessages(), Messages{});
}

TEST_F(Skins, SurviveNumbersThatAreNone) {
    for (const char* number : {"1/0", "-1/0", "0/0", "99999999999999999999", "2147483647", "-2147483648"}) {
        SCOPED_TRACE(number);
        std::string objects;
        for (const Kind& kind : kinds) {
            objects += std::string("<") + kind.name;
            for (const Tag& tag : kind.numbers)
                objects += std::string(" ") + tag.name + "=\"" + number + "\"";
            for (const Tag& tag : kind.optional)
                objects += std::string(" ") + tag.name + "=\"" + number + "\"";
            for (const Tag& tag : kind.pictures)
                objects += std::string(" ") + tag.name + "=\"" + tag.value + "\"";
            objects += "/>\n";
        }
        open(objects);
        for (int i = 0; i < 3; ++i) {
            editor->setParameter(-1, 0.0f);
            editor->idle();
        }
        editor->close();
        takeMessages();
    }
}

// What is too long

TEST_F(Skins, CutNamesAndValuesThatAreTooLong) {
    const std::string name(300, 'n'), value(127, '1');
    open("<display " + name + "=\"1\" x=\"0\" y=\"0\" w=\"9\" h=\"9\" id=\"0*" + value + "222\"/>");
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(editor->controls().size(), 1U);

    XmlNode* node = nullptr;
    ASSERT_GT(xmlParseNode(("<knob " + name + "=\"" + value + "222\"/>").c_str(), 0, &node), 0);
    const SkinObject object(node);
    ASSERT_EQ(object.tags.count, 1);
    EXPECT_EQ(object.tags[0].name, std::string(63, 'n'));
    EXPECT_EQ(object.tags[0].value, value);
    xmlFreeNode(node);
}

TEST_F(Skins, ReadManyTags) {
    std::string tags;
    for (int i = 0; i < 100; ++i)
        tags += std::string(" a") + std::to_string(i) + "=\"1\"";
    open("<knob" + tags + R"( x="1" y="2" w="3" h="4" id="5"/>)");
    EXPECT_EQ(places(), std::vector{CRect(1, 2, 4, 6)});
}

// Constants

TEST_F(Skins, DefineConstantsLineByLine) {
    open(R"(<CONSTANTS>
                left = 10
                top = left * 2,wide = 3,	,
                , tall = 4
            </CONSTANTS>
            <knob x="left" y="TOP" w="wide" h="tall" id="1"/>)");
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(places(), std::vector{CRect(10, 20, 13, 24)});
}

TEST_F(Skins, CountBareNamesOn) {
    open(R"(<constants>first, second, a = 5, b, c
            half = 2.7, next
            down = -3, up</constants>
            <knob x="first" y="second" w="b" h="c" id="1"/>
            <knob x="next" y="up" w="9" h="9" id="1"/>)");
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(places(), (std::vector{CRect(1, 2, 7, 9), CRect(3, -2, 12, 7)}));
}

TEST_F(Skins, DefineConstantsBeforeAnyBackground) {
    openAlone(R"(<CONSTANTS>left = 10</CONSTANTS><background filename="ground.png"/>
                 <knob x="left" y="0" w="9" h="9" id="1"/>)");
    EXPECT_EQ(places(), std::vector{CRect(10, 0, 19, 9)});
}

TEST_F(Skins, ShowALineOfConstantsThatFailsAndReadTheNext) {
    open(R"(<CONSTANTS>a = 5, b = oops, c, two words, d = 1.2.3
            e = 7</CONSTANTS><knob x="a" y="c" w="e" h="9" id="1"/>)");
    EXPECT_EQ(takeMessages(), (Messages{{"Expression parser error", "b = oops"},
                                        {"Expression parser error", "two words"},
                                        {"Expression parser error", "d = 1.2.3"}}));
    EXPECT_EQ(places(), std::vector{CRect(5, 6, 12, 15)}) << "what fails does not count";
}

TEST_F(Skins, TakeAnExpressionAmongConstantsForALine) {
    open(R"(<CONSTANTS>a = 1 = 2, b</CONSTANTS><knob x="a" y="b" w="9" h="9" id="1"/>)");
    EXPECT_EQ(takeMessages(), Messages{}) << "what stands behind an expression is ignored";
    EXPECT_EQ(places(), std::vector{CRect(1, 2, 10, 11)});
}

TEST_F(Skins, MayHaveNoConstants) {
    open("<CONSTANTS/><CONSTANTS> , \n ,</CONSTANTS><CONSTANTS a=\"1\"></CONSTANTS>");
    EXPECT_EQ(takeMessages(), Messages{});
}

TEST_F(Skins, AllowLinesOfConstantsUpTo255Bytes) {
    const std::string blanks(255 - std::string("a = 5").size(), ' ');
    open("<CONSTANTS>a =" + blanks + " 5</CONSTANTS><knob x=\"a\" y=\"0\" w=\"9\" h=\"9\" id=\"1\"/>");
    EXPECT_EQ(places(), std::vector{CRect(5, 0, 14, 9)});
}

using SkinsDeathTest = Skins;

TEST_F(SkinsDeathTest, EndTheProcessAtALineOfConstantsOf256Bytes) {
    const std::string blanks(256 - std::string("a = 5").size(), ' ');
    EXPECT_DEATH(open("<CONSTANTS>a =" + blanks + " 5</CONSTANTS>"), "");
    EXPECT_DEATH(open("<CONSTANTS>" + std::string(5000, '1') + "</CONSTANTS>"), "");
}

TEST_F(SkinsDeathTest, EndTheProcessAtANameOf60Bytes) {
    const std::string name(60, 'n');
    EXPECT_DEATH(open("<CONSTANTS>" + name + "</CONSTANTS>"), "");
    EXPECT_DEATH(open("<knob x=\"1 + " + name + "\"/>"), "");
}

// The reader of a tag

class Tags : public Skins {
  protected:
    Tags() { open(""); }
    ~Tags() override {
        xmlFreeNode(node);
        skin::skinContextRelease(&context);
    }

    int read(const std::string& element, const char* tag, bool numeric, bool optional, void* destination) {
        xmlFreeNode(node);
        node = nullptr;
        EXPECT_GT(xmlParseNode(element.c_str(), 0, &node), 0);
        const SkinObject object(node);
        return Editor::skinReadTag("thing", tag, &object, numeric, optional, destination, &context);
    }

    XmlNode* node = nullptr;
    SkinContext context;
    double number = -1.0;
    char text[skin::kTagValueSize] = "before";
};

TEST_F(Tags, AreFoundAsNumbersOrTexts) {
    EXPECT_EQ(read(R"(<a B="1+2"/>)", "b", true, false, &number), 1);
    EXPECT_EQ(number, 3.0);
    EXPECT_EQ(read(R"(<a B="1+2"/>)", "b", false, false, text), 1);
    EXPECT_STREQ(text, "1+2");
    EXPECT_EQ(read(R"(<a b=""/>)", "b", false, true, text), 1);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(read(R"(<a b="n = 5"/>)", "b", true, true, &number), 1);
    EXPECT_EQ(context.constants.count, 1);
    EXPECT_EQ(takeMessages(), Messages{});
}

TEST_F(Tags, MayBeMissingIfTheyAreOptional) {
    EXPECT_EQ(read("<a/>", "b", true, true, &number), -1);
    EXPECT_EQ(read("<a/>", "b", false, true, text), -1);
    EXPECT_EQ(takeMessages(), Messages{});
    EXPECT_EQ(read("<a/>", "b", true, false, &number), 0);
    EXPECT_EQ(read("<a/>", "b", false, false, text), 0);
    EXPECT_EQ(takeMessages(), (Messages{missingTag("b", "thing"), missingTag("b", "thing")}));
    EXPECT_EQ(number, -1.0);
    EXPECT_STREQ(text, "before");
}

TEST_F(Tags, MustBeRightEvenIfTheyAreOptional) {
    EXPECT_EQ(read(R"(<a b="oops"/>)", "b", true, true, &number), 0);
    EXPECT_EQ(takeMessages(), Messages{wrongTag("b", "thing")});
}

TEST_F(Tags, WithoutANameStandForTheObjectsText) {
    EXPECT_EQ(read("<a>6*7</a>", nullptr, true, false, &number), 1);
    EXPECT_EQ(number, 42.0);
    EXPECT_EQ(read("<a>6*7</a>", nullptr, false, false, text), 1);
    EXPECT_STREQ(text, "6*7");
    EXPECT_EQ(read("<a>" + std::string(500, 'x') + "</a>", nullptr, false, false, text), 1);
    EXPECT_EQ(text, std::string(127, 'x'));
    EXPECT_EQ(read("<a/>", nullptr, false, true, text), -1);
}

} // namespace

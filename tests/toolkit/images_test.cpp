#include "skin/images.h"

#include "desk/private_folder.h"
#include "platform/files.h"
#include "platform/folders.h"
#include "toolkit/toolkit.h"

#include "vstgui/lib/coffscreencontext.h"
#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/cknob.h"
#include "vstgui/lib/controls/coptionmenu.h"
#include "vstgui/lib/controls/cslider.h"
#include "vstgui/lib/controls/csplashscreen.h"
#include "vstgui/lib/controls/cswitch.h"
#include "vstgui/lib/controls/cvumeter.h"
#include "vstgui/lib/cview.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <vector>

namespace VSTGUI {

void PrintTo(const CColor& colour, std::ostream* out) {
    *out << "red " << +colour.red << " green " << +colour.green << " blue " << +colour.blue << " alpha "
         << +colour.alpha;
}

} // namespace VSTGUI

namespace {

using VSTGUI::CBitmap;
using VSTGUI::CColor;
using VSTGUI::CPoint;
using VSTGUI::CRect;

const CColor red(255, 0, 0), green(0, 255, 0), blue(0, 0, 255), white(255, 255, 255), black(0, 0, 0),
    brown(128, 64, 32);

/// A bitmap's pixel; colours are multiplied with their alpha, as the toolkit holds them.
CColor pixel(CBitmap& bitmap, std::uint32_t x, std::uint32_t y) {
    CColor colour(1, 2, 3, 4);
    const auto access = VSTGUI::owned(VSTGUI::CBitmapPixelAccess::create(&bitmap));
    EXPECT_TRUE(access && access->setPosition(x, y));
    if (access)
        access->getColor(colour);
    return colour;
}

class Images : public testing::Test {
  protected:
    /// One of the prepared pictures.
    VSTGUI::SharedPointer<CBitmap> load(const std::string& name) {
        return skin::loadImage(QUILLON_PICTURES, name);
    }

    toolkit::Toolkit toolkit;
};

/// The formats that keep every colour.
class ExactFormats : public Images, public testing::WithParamInterface<const char*> {};

TEST_P(ExactFormats, GiveEveryPixelAsItIs) {
    const auto image = load(GetParam());
    ASSERT_TRUE(image->isLoaded());
    EXPECT_EQ(image->getWidth(), 3);
    EXPECT_EQ(image->getHeight(), 2);
    EXPECT_EQ(pixel(*image, 0, 0), red);
    EXPECT_EQ(pixel(*image, 1, 0), green);
    EXPECT_EQ(pixel(*image, 2, 0), blue);
    EXPECT_EQ(pixel(*image, 0, 1), white);
    EXPECT_EQ(pixel(*image, 1, 1), black);
    EXPECT_EQ(pixel(*image, 2, 1), brown);
}

INSTANTIATE_TEST_SUITE_P(, ExactFormats,
                         testing::Values("squares.png", "squares.bmp", "squares.gif", "squares.tif",
                                         "squares.ico", "palette.png", "motorola.tif", "png.ico"),
                         [](const auto& test) {
                             std::string name = test.param;
                             name[name.find('.')] = '_';
                             return name;
                         });

TEST_F(Images, InJpegAreReadAsNearAsTheFormatKeepsThem) {
    const auto image = load("squares.jpg");
    ASSERT_TRUE(image->isLoaded());
    EXPECT_EQ(image->getWidth(), 48);
    EXPECT_EQ(image->getHeight(), 32);
    const CColor expected[] = {red, green, blue, white, black, brown};
    for (std::uint32_t square = 0; square < 6; ++square) {
        const CColor found = pixel(*image, 8 + 16 * (square % 3), 8 + 16 * (square / 3));
        EXPECT_NEAR(found.red, expected[square].red, 6) << "square " << square;
        EXPECT_NEAR(found.green, expected[square].green, 6) << "square " << square;
        EXPECT_NEAR(found.blue, expected[square].blue, 6) << "square " << square;
        EXPECT_EQ(found.alpha, 255);
    }
}

TEST_F(Images, KeepTheirTransparency) {
    for (const char* name : {"glass.png", "glass.tif", "glass.ico"}) {
        SCOPED_TRACE(name);
        const auto image = load(name);
        EXPECT_EQ(pixel(*image, 0, 0), CColor(128, 0, 0, 128));
        EXPECT_EQ(pixel(*image, 1, 0), CColor(0, 0, 0, 0));
    }
}

TEST_F(Images, InGreyAndInSixteenBitsAreReadToo) {
    EXPECT_EQ(pixel(*load("grey.png"), 0, 0), CColor(64, 64, 64));
    EXPECT_EQ(pixel(*load("grey.png"), 1, 0), white);
    EXPECT_EQ(pixel(*load("deep.png"), 0, 0), CColor(255, 128, 0));
}

TEST_F(Images, ThatMoveStandStillAtTheirFirstPicture) {
    EXPECT_EQ(pixel(*load("moving.gif"), 0, 0), red);
}

TEST_F(Images, AreKnownByTheirContentAndNotByTheirName) {
    const desk::PrivateFolder folder;
    std::filesystem::copy(QUILLON_PICTURES "/squares.bmp", "really a bitmap.png");
    const auto image = skin::loadImage(folder.path(), "really a bitmap.png");
    EXPECT_EQ(image->getWidth(), 3);
    EXPECT_EQ(pixel(*image, 2, 1), brown);
}

TEST_F(Images, AreFoundInAnyLetterCaseAndWithEitherSlash) {
    const desk::PrivateFolder folder;
    std::filesystem::create_directory("Knobs");
    std::filesystem::copy(QUILLON_PICTURES "/squares.png", "Knobs/Big.PNG");
    for (const char* name : {"Knobs/Big.PNG", "knobs\\big.png", "KNOBS/BIG.png"})
        EXPECT_EQ(skin::loadImage(folder.path(), name)->getWidth(), 3) << name;
    EXPECT_EQ(skin::loadImage(folder.path() + "/", "Knobs\\Big.PNG")->getWidth(), 3);
}

TEST_F(Images, MayLieOutsideTheFolder) {
    const desk::PrivateFolder folder;
    std::filesystem::create_directories("My Skin/knobs");
    std::filesystem::copy(QUILLON_PICTURES "/squares.png", "shared.png");
    const std::string skin = folder.path() + "/My Skin";
    for (const char* name : {"../shared.png", "..\\shared.png", "knobs/../../shared.png"})
        EXPECT_EQ(skin::loadImage(skin, name)->getWidth(), 3) << name;
    const std::string whole = folder.path() + "/shared.png";
    EXPECT_FALSE(skin::loadImage(skin, whole)->isLoaded()) << "a name always counts from the folder";
}

TEST_F(Images, AreFoundUnderNamesWithAccents) {
    const desk::PrivateFolder folder;
    std::filesystem::create_directory(u8"Oberfl\u00E4che");
    std::filesystem::copy(QUILLON_PICTURES "/squares.png", u8"Oberfl\u00E4che/kn\u00F6pfe.png");
    EXPECT_EQ(skin::loadImage(folder.path(), "Oberfl\xC3\xA4"
                                             "che/kn\xC3\xB6pfe.png")
                  ->getWidth(),
              3);
    // As the system itself spells the folder, in whatever code page that is.
    const std::string inside = folder.path() + "/" + platform::listFolder(folder.path()).at(0);
    EXPECT_EQ(skin::loadImage(inside, "kn\xC3\xB6pfe.png")->getWidth(), 3);
    EXPECT_EQ(skin::loadImage(inside, "KN\xC3\xB6PFE.png")->getWidth(), 3);
}

TEST_F(Images, AreDrawn) {
    const auto image = load("squares.bmp");
    const auto context = VSTGUI::COffscreenContext::create({5, 4});
    context->beginDraw();
    image->draw(context, CRect(1, 1, 4, 3), CPoint(0, 0), 1.f);
    context->endDraw();
    EXPECT_EQ(pixel(*context->getBitmap(), 1, 1), red);
    EXPECT_EQ(pixel(*context->getBitmap(), 3, 2), brown);
    EXPECT_EQ(pixel(*context->getBitmap(), 0, 0), CColor(0, 0, 0, 0));
}

TEST_F(Images, AreDecodedAnewEachTime) {
    EXPECT_NE(load("squares.png"), load("squares.png"));
}

using Bytes = std::vector<unsigned char>;

Bytes bytesOf(const std::string& name) {
    return platform::readWholeFile(QUILLON_PICTURES "/" + name).value();
}

/// With `inserted` before the byte at `place`, or at the end.
Bytes with(Bytes file, std::size_t place, const Bytes& inserted) {
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(place), inserted.begin(), inserted.end());
    return file;
}

/// squares.tif without the entry of its directory that tells how many bytes the strip has.
Bytes tiffWithoutLength() {
    constexpr std::size_t directory = 8, entry = 12;
    Bytes file = bytesOf("squares.tif");
    const std::size_t entries = file[directory];
    const std::size_t last = directory + 2 + entry * (entries - 1);
    EXPECT_EQ(file[last], 279 & 255) << "the entry of the lengths";
    file[directory] = static_cast<unsigned char>(entries - 1);
    // What stands behind the directory stays where it is.
    std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(last), 4, std::uint8_t{0});
    return file;
}

/// Files that are not by the book.
class LooseFiles : public Images {
  protected:
    bool loads(const Bytes& file) {
        EXPECT_TRUE(platform::writeWholeFile("picture", file.data(), file.size()));
        return skin::loadImage(folder.path(), "picture")->isLoaded();
    }
    /// squares.*
    void expectSquares(const Bytes& file) {
        ASSERT_TRUE(loads(file));
        const auto image = skin::loadImage(folder.path(), "picture");
        EXPECT_EQ(pixel(*image, 0, 0), red);
        EXPECT_EQ(pixel(*image, 2, 1), brown);
    }

    desk::PrivateFolder folder;
};

TEST_F(LooseFiles, OfGifsShowWithoutTheirLastByte) {
    const Bytes gif = bytesOf("squares.gif");
    ASSERT_EQ(gif.back(), ';');
    expectSquares({gif.begin(), gif.end() - 1});
    EXPECT_FALSE(loads({gif.begin(), gif.end() - 2})) << "the pixels have not come to their end";
}

TEST_F(LooseFiles, OfGifsShowWithSpareBytesBetweenTheirBlocks) {
    const Bytes gif = bytesOf("squares.gif");
    const std::size_t picture = 13 + 3 * 8;
    ASSERT_EQ(gif[picture], ',');
    expectSquares(with(gif, picture, {0}));
    expectSquares(with(gif, picture, {0, 0, 0}));
    expectSquares(with(gif, gif.size() - 1, {0}));
    Bytes padded = gif;
    padded.back() = 0;
    expectSquares(padded);
    EXPECT_FALSE(loads(Bytes(gif.begin(), gif.begin() + picture))) << "no picture in it";
    EXPECT_FALSE(loads(with({gif.begin(), gif.begin() + picture}, picture, {0, ';'}))) << "no picture in it";
}

TEST_F(LooseFiles, OfMovingGifsShowTheirFirstPictureIfALaterOneIsCutOff) {
    const Bytes gif = bytesOf("moving.gif");
    ASSERT_TRUE(loads({gif.begin(), gif.end() - 4}));
    EXPECT_EQ(pixel(*skin::loadImage(folder.path(), "picture"), 0, 0), red);
}

TEST_F(LooseFiles, OfTiffsShowWithoutTheLengthOfTheirOneStrip) {
    const Bytes tiff = tiffWithoutLength();
    expectSquares(tiff);
    EXPECT_FALSE(loads({tiff.begin(), tiff.end() - 1})) << "a pixel is missing";
}

TEST_F(LooseFiles, OfTiffsShowWithALengthBeyondTheirEnd) {
    Bytes tiff = bytesOf("squares.tif");
    const std::size_t length = 8 + 2 + 12 * 8 + 8;
    ASSERT_EQ(tiff[length], 3 * 2 * 3);
    tiff[length + 1] = 1;
    expectSquares(tiff);
    tiff.pop_back();
    EXPECT_FALSE(loads(tiff)) << "a pixel is missing";
}

TEST_F(LooseFiles, OfIconsShowWhereTheirDirectoryTellsNoDepth) {
    Bytes icon = bytesOf("squares.ico");
    for (const std::size_t entry : {6u, 22u})
        icon[entry + 6] = 0;
    expectSquares(icon);
    icon.pop_back();
    EXPECT_FALSE(loads(icon));
}

TEST_F(LooseFiles, OfIconsShowTheDeepestPictureWhereTheirDirectoryTellsNoDepth) {
    // One bit a pixel, all black, before the other two: an entry of the directory, then header, two colours,
    // rows, and rows that say what is not to be seen.
    constexpr unsigned char length = 40 + 2 * 4 + 2 * 4 + 2 * 4;
    Bytes monochrome(length);
    const std::pair<std::size_t, unsigned char> numbers[] = {{0, 40}, {4, 3}, {8, 4}, {12, 1}, {14, 1}};
    for (const auto& [place, number] : numbers)
        monochrome[place] = number;
    Bytes icon = bytesOf("squares.ico");
    icon[4] = 3;
    for (const std::size_t entry : {6u, 22u}) {
        icon[entry + 6] = 0;
        icon[entry + 12] = static_cast<unsigned char>(icon[entry + 12] + 16);
    }
    const auto at = static_cast<unsigned char>(icon.size() + 16);
    icon = with(icon, 6, {3, 2, 0, 0, 1, 0, 0, 0, length, 0, 0, 0, at, 0, 0, 0});
    expectSquares(with(icon, icon.size(), monochrome));
}

TEST_F(LooseFiles, InArithmeticJpegShow) {
    const auto image = load("arithmetic.jpg");
    ASSERT_TRUE(image->isLoaded());
    EXPECT_NEAR(pixel(*image, 8, 8).red, 255, 6);
    EXPECT_NEAR(pixel(*image, 40, 24).green, 64, 6);
    Bytes jpeg = bytesOf("arithmetic.jpg");
    while (!jpeg.empty()) {
        jpeg.pop_back();
        ASSERT_FALSE(loads(jpeg)) << jpeg.size();
    }
}

/// Everything that is no picture.
class MissingImages : public Images {
  protected:
    void expectMissing(CBitmap& image) {
        EXPECT_FALSE(image.isLoaded());
        EXPECT_EQ(image.getWidth(), 0);
        EXPECT_EQ(image.getHeight(), 0);
        EXPECT_NE(dynamic_cast<skin::MissingImage*>(&image), nullptr);
    }
};

TEST_F(MissingImages, StandForAFileThatIsNotThere) {
    expectMissing(*load("nowhere.png"));
    expectMissing(*load(""));
    expectMissing(*load(std::string(5000, 'x')));
    expectMissing(*skin::loadImage("/nowhere", "squares.png"));
}

TEST_F(MissingImages, StandForAFileThatIsNoPicture) {
    expectMissing(*load("make_pictures.py"));
    const desk::PrivateFolder folder;
    ASSERT_TRUE(platform::writeWholeFile("empty.png", "", 0));
    expectMissing(*skin::loadImage(folder.path(), "empty.png"));
    std::filesystem::create_directory("folder.png");
    expectMissing(*skin::loadImage(folder.path(), "folder.png"));
}

TEST_F(MissingImages, StandForAFileThatIsTorn) {
    for (const char* name : {"torn.png", "torn.bmp", "torn.gif", "torn.jpg", "torn.tif", "torn.ico"}) {
        SCOPED_TRACE(name);
        expectMissing(*load(name));
    }
}

TEST_F(MissingImages, StandForAPictureThatNobodyCanDraw) {
    for (const char* name : {"giant.png", "giant.bmp", "giant.gif", "giant.jpg", "giant.tif", "giant.ico"}) {
        SCOPED_TRACE(name);
        expectMissing(*load(name));
    }
}

TEST_F(MissingImages, StandForAFileThatIsCutOffAnywhere) {
    const desk::PrivateFolder folder;
    for (const char* name :
         {"squares.png", "squares.bmp", "squares.gif", "squares.jpg", "squares.tif", "squares.ico"}) {
        std::filesystem::copy(std::string(QUILLON_PICTURES "/") + name, name);
        ASSERT_TRUE(skin::loadImage(folder.path(), name)->isLoaded()) << name;
        // The last byte of a GIF only says that no further picture comes.
        const std::uintmax_t spare = name == std::string("squares.gif") ? 1 : 0;
        for (auto size = std::filesystem::file_size(name) - spare; size-- > 0;) {
            std::filesystem::resize_file(name, size);
            ASSERT_FALSE(skin::loadImage(folder.path(), name)->isLoaded())
                << name << " of " << size << " bytes";
        }
    }
}

TEST_F(MissingImages, StandForAFormatThatNotEverySystemReads) {
    const desk::PrivateFolder folder;
    const std::string files[] = {
        "P6 1 1 255 abc",
        "/* XPM */ static char* x[] = {\"1 1 1 1\", \"a c #FF0000\", \"a\"};",
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"2\" height=\"2\"/>",
    };
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        ASSERT_TRUE(platform::writeWholeFile("picture", file.data(), file.size()));
        expectMissing(*skin::loadImage(folder.path(), "picture"));
    }
    // A mouse pointer is an icon but for one number.
    auto icon = platform::readWholeFile(QUILLON_PICTURES "/squares.ico").value();
    icon[2] = 2;
    ASSERT_TRUE(platform::writeWholeFile("picture", icon.data(), icon.size()));
    expectMissing(*skin::loadImage(folder.path(), "picture"));
}

TEST_F(MissingImages, StandForAFileThatIsTooLarge) {
    const desk::PrivateFolder folder;
    std::filesystem::copy(QUILLON_PICTURES "/squares.bmp", "large.bmp");
    std::filesystem::resize_file("large.bmp", 64 << 20);
    EXPECT_TRUE(skin::loadImage(folder.path(), "large.bmp")->isLoaded());
    std::filesystem::resize_file("large.bmp", (64 << 20) + 1);
    expectMissing(*skin::loadImage(folder.path(), "large.bmp"));
}

TEST_F(MissingImages, StandForAPictureThatWouldCostMoreThanTheSkinMay) {
    const auto loads = [](toolkit::PictureAllowance& allowance) {
        return skin::loadImage(QUILLON_PICTURES, "squares.bmp", allowance)->isLoaded();
    };
    const std::uint64_t bytes = std::filesystem::file_size(QUILLON_PICTURES "/squares.bmp");
    toolkit::PictureAllowance fewBytes{.fileBytes = 2 * bytes + bytes / 2};
    toolkit::PictureAllowance fewPixels{.pixels = 2 * 6 + 3};
    for (toolkit::PictureAllowance* allowance : {&fewBytes, &fewPixels}) {
        EXPECT_TRUE(loads(*allowance));
        EXPECT_TRUE(loads(*allowance));
        EXPECT_FALSE(loads(*allowance));
    }
}

/// Draws a control that was made of a picture which is not there, at every value.
void drawEverywhere(VSTGUI::CControl* control) {
    const auto context = VSTGUI::COffscreenContext::create({40, 40});
    context->beginDraw();
    for (float value : {0.f, 0.5f, 1.f}) {
        control->setValue(value);
        control->draw(context);
        control->drawRect(context, CRect(0, 0, 40, 40));
    }
    context->endDraw();
    EXPECT_EQ(pixel(*context->getBitmap(), 5, 5), CColor(0, 0, 0, 0)) << "nothing to be seen";
    control->forget();
}

TEST_F(MissingImages, MayBeDrawnByThemselves) {
    const auto image = load("nowhere.png");
    const auto context = VSTGUI::COffscreenContext::create({4, 4});
    context->beginDraw();
    image->draw(context, CRect(0, 0, 4, 4), CPoint(1, 1), 0.5f);
    context->drawBitmap(image, CRect(0, 0, 4, 4));
    context->endDraw();
    EXPECT_EQ(pixel(*context->getBitmap(), 0, 0), CColor(0, 0, 0, 0));
}

TEST_F(MissingImages, MayBeGivenToEveryControl) {
    const auto none = load("nowhere.png");
    for (const CRect& size : {CRect(0, 0, 0, 0), CRect(0, 0, 20, 20)}) {
        drawEverywhere(new VSTGUI::COnOffButton(size, nullptr, 1, none));
        drawEverywhere(new VSTGUI::CKickButton(size, nullptr, 1, none));
        drawEverywhere(new VSTGUI::CKnob(size, nullptr, 1, none, none));
        drawEverywhere(new VSTGUI::CSlider(size, nullptr, 1, 0, 10, none, none));
        drawEverywhere(new VSTGUI::CVerticalSwitch(size, nullptr, 1, none));
        drawEverywhere(new VSTGUI::CHorizontalSwitch(size, nullptr, 1, none));
        drawEverywhere(new VSTGUI::CVuMeter(size, none, none, 8));
        drawEverywhere(new VSTGUI::CSplashScreen(size, nullptr, 1, none, size));
    }
    // With no height at all the toolkit would divide by it: a film strip wants at least one row of its own.
    drawEverywhere(new VSTGUI::CAnimKnob(CRect(0, 0, 20, 20), nullptr, 1, 1, 20, none));
}

} // namespace

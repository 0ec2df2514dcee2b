// The controller map and its file "Pluginccmap.bin": two places to read from, one to write to, one map for
// all instances.
#include "support/plugin_folder.h"
#include "support/unopenable_file.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <numeric>

namespace conversation {
namespace {

using namespace vst2;

namespace files = std::filesystem;

constexpr std::size_t kMapSize = 84;
constexpr std::int32_t kNone = -1;

using Entries = std::array<std::int32_t, kParameters>;

Bytes mapOf(const Entries& entries) {
    BankImage map(kMapSize);
    for (std::size_t id = 0; id < entries.size(); ++id)
        map.littleEndian(4 * id, static_cast<std::uint32_t>(entries[id]));
    return map.bytes();
}

/// Controllers from `first` on, one for each id.
Entries countingFrom(std::int32_t first) {
    Entries entries;
    std::iota(entries.begin(), entries.end(), first);
    return entries;
}

Entries nothingBound() {
    Entries entries;
    entries.fill(kNone);
    return entries;
}

/// The value that `controller` leaves in `id`, on an instance where the parameter stood elsewhere; or
/// "unmoved".
bool moves(host::Plugin& plugin, std::int32_t controller, std::int32_t id) {
    plugin.setParameter(id, 0.3f);
    const host::MidiMessage message = {0, {0xB0, static_cast<unsigned char>(controller), 64}};
    plugin.sendMidi({&message, 1});
    return plugin.getParameter(id) != 0.3f;
}

class MapFixture : public QuietPlugin {
  protected:
    void putHere(const Bytes& map) { writeFile(here(kMapFile), map); }
    void putBeside(const Bytes& map) { writeFile(module.beside(kMapFile), map); }

    /// EXPECTs that an instance made now has exactly these controllers. An id that is bound to none must be
    /// moved by no controller at all.
    void expectBindings(const Entries& expected) {
        host::Plugin plugin(library());
        for (std::int32_t id = 0; id < kLiveParameters; ++id)
            for (std::int32_t controller = 0; controller < 128; ++controller)
                EXPECT_EQ(moves(plugin, controller, id), expected[static_cast<std::size_t>(id)] == controller)
                    << "id " << id << ", controller " << controller;
    }
};

class MapReading : public MapFixture {};

TEST_F(MapReading, WithoutAFileBindsNothing) {
    expectBindings(nothingBound());
    EXPECT_EQ(readFile(here(kMapFile)), mapOf(nothingBound()))
        << "also ids without a parameter are bound to none";
}

TEST_F(MapReading, TakesTheFileOfTheCurrentDirectory) {
    putHere(mapOf(countingFrom(40)));
    expectBindings(countingFrom(40));
}

TEST_F(MapReading, TakesTheFileBesideTheLibraryWhereThereIsNoOther) {
    putBeside(mapOf(countingFrom(60)));
    expectBindings(countingFrom(60));
}

TEST_F(MapReading, PrefersTheCurrentDirectory) {
    putHere(mapOf(countingFrom(40)));
    putBeside(mapOf(countingFrom(60)));
    expectBindings(countingFrom(40));
}

TEST_F(MapReading, PrefersAnEmptyFileOfTheCurrentDirectoryToo) {
    putHere({});
    putBeside(mapOf(countingFrom(60)));
    expectBindings(Entries{});
}

TEST_F(MapReading, DoesNotFallBackWhereTheFileCannotBeOpened) {
    makeUnopenable(kMapFile);
    ASSERT_TRUE(files::exists(kMapFile));
    putBeside(mapOf(countingFrom(60)));
    expectBindings(nothingBound());
}

TEST_F(MapReading, BindsNothingWhereTheFileBesideTheLibraryCannotBeOpened) {
    const files::path before = files::current_path();
    files::current_path(module.folder()); // a socket's name is short
    makeUnopenable(kMapFile);
    files::current_path(before);
    expectBindings(nothingBound());
}

TEST_F(MapReading, OfAFileOf40BytesBindsTheRestToControllerZero) {
    Bytes map = mapOf(countingFrom(40));
    map.resize(40);
    putHere(map);
    Entries expected = countingFrom(40);
    std::fill(expected.begin() + 10, expected.end(), 0);
    expectBindings(expected);
    EXPECT_EQ(readFile(here(kMapFile)), mapOf(expected));
}

TEST_F(MapReading, OfAFileThatEndsWithinAnEntryFillsItUpWithZeros) {
    Entries entries = nothingBound();
    entries[2] = 0x01020330; // 48 in its lowest byte
    Bytes map = mapOf(entries);
    map.resize(9);
    putHere(map);
    Entries expected = {};
    expected[0] = expected[1] = kNone;
    expected[2] = 0x30;
    expectBindings(expected);
    EXPECT_EQ(readFile(here(kMapFile)), mapOf(expected));
}

TEST_F(MapReading, OfALongerFileIgnoresTheTail) {
    Bytes map = mapOf(countingFrom(40));
    map.resize(5000, 3);
    putHere(map);
    expectBindings(countingFrom(40));
}

TEST_F(MapReading, TakesTheEntriesAsTheyStand) {
    Entries entries = nothingBound();
    entries[0] = 1000;
    entries[1] = -7;
    entries[2] = 0x7FFFFFFF;
    entries[3] = -0x7FFFFFFF - 1;
    entries[4] = 128;
    entries[5] = 0x100 + 20;
    putHere(mapOf(entries));
    expectBindings(entries);
    EXPECT_EQ(readFile(here(kMapFile)), mapOf(entries));
}

TEST_F(MapReading, OfTwoEqualEntriesBindsOneControllerToBoth) {
    Entries entries = nothingBound();
    entries[kCurve] = entries[kStereo] = 33;
    putHere(mapOf(entries));
    expectBindings(entries);
}

TEST_F(MapReading, SaysNothingToTheHost) {
    putHere(mapOf(countingFrom(40)));
    const host::Plugin plugin(library());
    EXPECT_EQ(plugin.callsOf(audioMasterUpdateDisplay), 5) << "no more than for the bank";
}

TEST_F(MapReading, OfTheKeptFileLoadsUnchanged) {
    const auto kept = readFile(QUILLON_SOURCE "/tests/fixtures/Pluginccmap.bin");
    ASSERT_TRUE(kept);
    putHere(*kept);
    Entries expected = nothingBound();
    expected[kBaseLength] = 16;
    expected[kTaps] = 17;
    expected[kFeedback] = 74;
    expected[kPreLowPass] = 71;
    expected[kDryWet] = 7;
    expected[kOutPan] = 10;
    expected[kOutGain] = 7;
    expected[20] = 127;
    expectBindings(expected);
    EXPECT_EQ(readFile(here(kMapFile)), *kept);
}

class MapWriting : public MapFixture {};

TEST_F(MapWriting, HappensAtEachCloseAlsoWhereNothingChanged) {
    for (int round = 0; round < 2; ++round) {
        host::Plugin plugin(library());
        files::remove(here(kMapFile));
        plugin.close();
        EXPECT_EQ(readFile(here(kMapFile)), mapOf(nothingBound()));
    }
}

TEST_F(MapWriting, DoesNotHappenBefore) {
    host::Plugin plugin(library());
    plugin.start(44100.0f, 512);
    plugin.suspend();
    EXPECT_FALSE(files::exists(here(kMapFile)));
}

TEST_F(MapWriting, GoesToTheCurrentDirectoryWhereTheMapWasReadBesideTheLibrary) {
    putBeside(mapOf(countingFrom(60)));
    host::Plugin(library()).close();
    EXPECT_EQ(readFile(here(kMapFile)), mapOf(countingFrom(60)));
}

TEST_F(MapWriting, NeverTouchesTheFileBesideTheLibrary) {
    Bytes map = mapOf(countingFrom(60));
    map.resize(kMapSize + 5, 9);
    putBeside(map);
    host::Plugin(library()).close();
    EXPECT_EQ(readFile(module.beside(kMapFile)), map);
}

TEST_F(MapWriting, GoesToWhatIsTheCurrentDirectoryAtThatMoment) {
    putHere(mapOf(countingFrom(40)));
    host::Plugin plugin(library());
    files::remove(here(kMapFile));
    files::create_directory(here("elsewhere"));
    files::current_path(here("elsewhere"));
    plugin.close();
    files::current_path(here(""));
    EXPECT_EQ(readFile(here("elsewhere/Pluginccmap.bin")), mapOf(countingFrom(40)));
    EXPECT_FALSE(files::exists(here(kMapFile)));
}

TEST_F(MapWriting, ReplacesALongerFileWhole) {
    putHere(Bytes(5000, 3));
    host::Plugin(library()).close();
    EXPECT_EQ(readFile(here(kMapFile)), Bytes(kMapSize, 3));
}

TEST_F(MapWriting, ThatIsNotPossibleIsNobodysConcern) {
    host::Plugin plugin(library());
    makeUnopenable(kMapFile);
    EXPECT_EQ(plugin.close(), 1);
    EXPECT_TRUE(isUnopenable(kMapFile));
}

TEST_F(MapWriting, WhereTheCurrentDirectoryIsGoneIsNobodysConcern) {
    files::create_directory(here("gone"));
    host::Plugin plugin(library());
    files::current_path(here("gone"));
    std::error_code kept;
    if (!files::remove(here("gone"), kept)) {
        files::current_path(here(""));
        GTEST_SKIP() << "this system does not let a current directory go";
    }
    EXPECT_EQ(plugin.close(), 1);
    files::current_path(here(""));
}

class SharedMap : public MapFixture {};

TEST_F(SharedMap, IsReadAgainByEveryFurtherInstanceForAll) {
    putHere(mapOf(countingFrom(40)));
    host::Plugin first(library());
    EXPECT_TRUE(moves(first, 40, 0));
    putHere(mapOf(countingFrom(80)));
    host::Plugin second(library());
    EXPECT_FALSE(moves(first, 40, 0));
    EXPECT_TRUE(moves(first, 80, 0));
    EXPECT_TRUE(moves(second, 80, 0));
}

TEST_F(SharedMap, IsEmptiedForAllByAnInstanceThatFindsNoFile) {
    putHere(mapOf(countingFrom(40)));
    host::Plugin first(library());
    files::remove(here(kMapFile));
    const host::Plugin second(library());
    EXPECT_FALSE(moves(first, 40, 0));
}

TEST_F(SharedMap, IsWrittenByTheInstanceThatIsClosedLast) {
    putHere(mapOf(countingFrom(40)));
    host::Plugin first(library());
    putHere(mapOf(countingFrom(80)));
    host::Plugin second(library());
    second.close();
    putHere({});
    first.close();
    EXPECT_EQ(readFile(here(kMapFile)), mapOf(countingFrom(80)));
}

TEST_F(SharedMap, OutlivesAllInstancesThroughItsFileAlone) {
    putHere(mapOf(countingFrom(40)));
    host::Plugin(library()).close();
    expectBindings(countingFrom(40));
    files::remove(here(kMapFile));
    expectBindings(nothingBound());
}

} // namespace
} // namespace conversation

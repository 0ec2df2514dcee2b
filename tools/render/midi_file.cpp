#include "tools/render/midi_file.h"

#include "tools/common/input_file.h"
#include "tools/common/tool_error.h"
#include "tools/render/big_endian.h"

#include <algorithm>
#include <string>

namespace tools::render {

namespace {

constexpr std::uintmax_t kLongestFile = 64u << 20;
constexpr std::size_t kChunkHead = 8;

/// An event at its tick. Tempo changes travel with the messages until all tracks are merged.
struct TickEvent {
    std::uint64_t tick = 0;
    std::uint32_t tempo = 0; ///< microseconds a quarter note, for a tempo change; else 0
    std::array<std::uint8_t, 3> bytes = {};
};

struct Header {
    unsigned format = 0;
    unsigned tracks = 0;
    unsigned ticksPerQuarter = 0; ///< 0 if time is counted in film frames
    double ticksPerSecond = 0.0;  ///< if it is
};

Header headerFrom(std::span<const std::uint8_t> bytes) {
    const bool hasMark = bytes.size() >= kChunkHead && std::equal(bytes.begin(), bytes.begin() + 4, "MThd");
    if (!hasMark)
        throw ToolError("is not a standard MIDI file");
    if (bigEndian(bytes, 4, 4) < 6 || bytes.size() < kChunkHead + 6)
        throw ToolError("has too short a header");
    Header header;
    header.format = bigEndian(bytes, 8, 2);
    header.tracks = bigEndian(bytes, 10, 2);
    const unsigned division = bigEndian(bytes, 12, 2);
    if (header.format > 1)
        throw ToolError("is a MIDI file of format " + std::to_string(header.format) +
                        "; only 0 and 1 can be played");
    if (division & 0x8000) {
        const int frames = 256 - static_cast<int>(division >> 8);
        if (frames != 24 && frames != 25 && frames != 29 && frames != 30)
            throw ToolError("counts " + std::to_string(frames) +
                            " film frames per second, which is not a valid rate");
        // "29" stands for the colour television rate.
        header.ticksPerSecond = (frames == 29 ? 30000.0 / 1001.0 : frames) * (division & 0xFF);
    } else {
        header.ticksPerQuarter = division;
    }
    if (header.ticksPerQuarter == 0 && header.ticksPerSecond == 0.0)
        throw ToolError("has no ticks to count time with");
    return header;
}

/// Walks one track's bytes.
class TrackReader {
  public:
    TrackReader(std::span<const std::uint8_t> bytes, unsigned number) : bytes_(bytes), number_(number) {}

    void readInto(std::vector<TickEvent>& events) {
        while (!hasEnded_ && position_ < bytes_.size()) {
            tick_ += variableLength();
            readEvent(events);
        }
    }

  private:
    [[noreturn]] void fail(const std::string& what) const {
        throw ToolError("track " + std::to_string(number_) + ", byte " + std::to_string(position_) + ": " +
                        what);
    }

    std::uint8_t next() {
        if (position_ >= bytes_.size())
            fail("the track ends in the middle of an event");
        return bytes_[position_++];
    }

    std::uint32_t variableLength() {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            const std::uint8_t byte = next();
            value = (value << 7) | (byte & 0x7Fu);
            if (byte < 0x80)
                return value;
        }
        fail("a number runs on for more than four bytes");
    }

    std::span<const std::uint8_t> block(std::uint32_t length) {
        if (length > bytes_.size() - position_)
            fail("the track ends in the middle of an event");
        const auto result = bytes_.subspan(position_, length);
        position_ += length;
        return result;
    }

    void readEvent(std::vector<TickEvent>& events) {
        std::uint8_t first = next();
        if (first == 0xFF) {
            readMeta(events);
        } else if (first == 0xF0 || first == 0xF7) {
            block(variableLength());
            runningStatus_ = 0;
        } else if (first > 0xF0) {
            fail("a message that has no place in a file");
        } else if (first >= 0x80) {
            runningStatus_ = first;
            readMessage(next(), events);
        } else if (runningStatus_ == 0) {
            fail("data without a message that it belongs to");
        } else {
            readMessage(first, events);
        }
    }

    void readMessage(std::uint8_t firstData, std::vector<TickEvent>& events) {
        const int kind = runningStatus_ & 0xF0;
        const bool hasTwo = kind != 0xC0 && kind != 0xD0;
        const std::uint8_t second = hasTwo ? next() : std::uint8_t{0};
        if (firstData >= 0x80 || second >= 0x80)
            fail("a data byte above 127");
        events.push_back({tick_, 0, {runningStatus_, firstData, second}});
    }

    void readMeta(std::vector<TickEvent>& events) {
        constexpr std::uint8_t endOfTrack = 0x2F;
        constexpr std::uint8_t setTempo = 0x51;
        const std::uint8_t type = next();
        const auto content = block(variableLength());
        runningStatus_ = 0;
        hasEnded_ = type == endOfTrack;
        if (type != setTempo)
            return;
        if (content.size() != 3)
            fail("a tempo of " + std::to_string(content.size()) + " bytes");
        const std::uint32_t tempo = bigEndian(content, 0, 3);
        if (tempo == 0)
            fail("a tempo without end");
        events.push_back({tick_, tempo, {}});
    }

    std::span<const std::uint8_t> bytes_;
    unsigned number_;
    std::size_t position_ = 0;
    std::uint64_t tick_ = 0;
    std::uint8_t runningStatus_ = 0;
    bool hasEnded_ = false;
};

std::vector<TickEvent> readTracks(std::span<const std::uint8_t> bytes, const Header& header) {
    std::vector<TickEvent> events;
    std::size_t position = kChunkHead + bigEndian(bytes, 4, 4);
    unsigned found = 0;
    while (found < header.tracks) {
        if (position > bytes.size() || bytes.size() - position < kChunkHead)
            throw ToolError("ends after track " + std::to_string(found) + " of " +
                            std::to_string(header.tracks));
        const auto head = bytes.subspan(position, kChunkHead);
        const std::uint32_t length = bigEndian(head, 4, 4);
        position += kChunkHead;
        if (length > bytes.size() - position)
            throw ToolError("ends in the middle of track " + std::to_string(found + 1));
        // Chunks of other kinds may stand between the tracks.
        if (std::equal(head.begin(), head.begin() + 4, "MTrk"))
            TrackReader(bytes.subspan(position, length), ++found).readInto(events);
        position += length;
    }
    return events;
}

/// Turns ticks into seconds, on the way through the whole piece.
class Clock {
  public:
    explicit Clock(const Header& header) : header_(header) {}

    double secondsAt(std::uint64_t tick) {
        const auto ticks = static_cast<double>(tick - tick_);
        tick_ = tick;
        seconds_ += header_.ticksPerQuarter == 0 ? ticks / header_.ticksPerSecond
                                                 : ticks * tempo_ / (header_.ticksPerQuarter * 1e6);
        return seconds_;
    }
    void setTempo(std::uint32_t microsecondsPerQuarter) { tempo_ = microsecondsPerQuarter; }

  private:
    Header header_;
    std::uint64_t tick_ = 0;
    double seconds_ = 0.0;
    double tempo_ = 500000.0;
};

} // namespace

std::vector<TimedMidi> parseMidiFile(std::span<const std::uint8_t> bytes) {
    const Header header = headerFrom(bytes);
    std::vector<TickEvent> events = readTracks(bytes, header);
    std::stable_sort(events.begin(), events.end(),
                     [](const TickEvent& a, const TickEvent& b) { return a.tick < b.tick; });
    std::vector<TimedMidi> messages;
    Clock clock(header);
    for (const TickEvent& event : events) {
        const double seconds = clock.secondsAt(event.tick);
        if (event.tempo != 0)
            clock.setTempo(event.tempo);
        else
            messages.push_back({seconds, event.bytes});
    }
    return messages;
}

std::vector<TimedMidi> readMidiFile(const std::filesystem::path& path) {
    const auto bytes = readBytes(path, kLongestFile);
    try {
        return parseMidiFile(bytes);
    } catch (const ToolError& error) {
        throw ToolError(path.string() + " " + error.what());
    }
}

} // namespace tools::render

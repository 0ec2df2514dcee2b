#include "support/scratch_folder.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sndfile.hh>

namespace files = std::filesystem;

ScratchFolder::ScratchFolder() {
    std::random_device random;
    path_ = files::temp_directory_path() / ("quillon-test-" + std::to_string(random()));
    if (!files::create_directory(path_))
        throw std::runtime_error("no scratch folder can be made");
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    files::remove_all(path_, ignored);
}

std::vector<std::string> ScratchFolder::names() const {
    std::vector<std::string> names;
    for (const auto& entry : files::directory_iterator(path_))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

bool ScratchFolder::holds(const std::string& name) const {
    std::error_code error;
    for (files::recursive_directory_iterator entry(path_, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().filename() == name)
            return true;
    return false;
}

std::string ScratchFolder::writeText(const std::string& name, std::string_view text) const {
    std::ofstream(file(name), std::ios::binary) << text;
    return file(name);
}

std::string ScratchFolder::writeBytes(const std::string& name, std::span<const std::uint8_t> bytes) const {
    return writeText(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::string ScratchFolder::writeSound(const std::string& name, const std::vector<float>& samples,
                                      int channels, int sampleRate) const {
    SndfileHandle out(file(name), SFM_WRITE, SF_FORMAT_WAV | SF_FORMAT_FLOAT, channels, sampleRate);
    const auto count = static_cast<sf_count_t>(samples.size());
    EXPECT_EQ(out.write(samples.data(), count), count) << name;
    return file(name);
}

Sound readSound(const std::string& path) {
    SndfileHandle in(path);
    EXPECT_EQ(in.error(), SF_ERR_NO_ERROR) << path << ": " << in.strError();
    Sound sound{in.channels(), in.samplerate(), in.format(), {}};
    sound.samples.resize(static_cast<std::size_t>(in.frames() * in.channels()));
    in.read(sound.samples.data(), static_cast<sf_count_t>(sound.samples.size()));
    return sound;
}

std::vector<std::uint8_t> readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<float> noise(std::size_t frames) {
    std::minstd_rand random(1);
    std::vector<float> samples(frames);
    for (float& sample : samples)
        sample = static_cast<float>(random() % 65536) / 65536.0f - 0.5f;
    return samples;
}

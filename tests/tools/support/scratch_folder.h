// A folder for one test, with the means to put audio into it and get audio out of it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Sound as a file holds it.
struct Sound {
    int channels = 1;
    int sampleRate = 44100;
    int format = 0;             ///< libsndfile's
    std::vector<float> samples; ///< frames x channels

    std::size_t frames() const { return samples.size() / static_cast<std::size_t>(channels); }
    /// Throws std::out_of_range beyond the end.
    float at(std::size_t frame, int channel) const {
        return samples.at(frame * static_cast<std::size_t>(channels) + static_cast<std::size_t>(channel));
    }
};

class ScratchFolder {
  public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    /// Names of all that is in it, hidden files too, sorted.
    std::vector<std::string> names() const;
    /// Whether anything in it is called so, however deep.
    bool holds(const std::string& name) const;

    /// Each gives the full path of what it wrote.
    std::string writeText(const std::string& name, std::string_view text) const;
    std::string writeBytes(const std::string& name, std::span<const std::uint8_t> bytes) const;
    /// Writes 32-bit floats, so that every sample arrives as it is.
    std::string writeSound(const std::string& name, const std::vector<float>& samples, int channels = 1,
                           int sampleRate = 44100) const;

  private:
    std::filesystem::path path_;
};

Sound readSound(const std::string& path);
std::vector<std::uint8_t> readFile(const std::string& path);

/// `frames` samples of noise between -0.5 and 0.5, the same each time.
std::vector<float> noise(std::size_t frames);

// An X server behind a counter: programs that connect here talk to the server as if directly, and what they
// send is counted.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <thread>

namespace test {

class CountedDisplay {
  public:
    /// In front of the server that is called `server` (":7"). Throws std::runtime_error if it cannot stand
    /// there.
    explicit CountedDisplay(const std::string& server);
    /// Ends the connections that have come this way.
    ~CountedDisplay();
    CountedDisplay(const CountedDisplay&) = delete;
    CountedDisplay& operator=(const CountedDisplay&) = delete;

    /// What a program takes as DISPLAY.
    const std::string& name() const { return name_; }
    /// Bytes that have gone to the server since the start. An answer of the server that has arrived tells
    /// that all before its question is counted.
    std::uint64_t bytesSent() const { return sent_; }

  private:
    void forward();
    void accept();
    bool pass(int from, int to);
    void disconnect(int end);

    std::string server_, name_;
    int listener_ = -1;
    int wake_[2] = {-1, -1};        ///< a pipe whose end stops the thread
    std::map<int, int> otherEnd_;   ///< of each connection, both ways
    std::map<int, bool> isProgram_; ///< or the server
    std::atomic<std::uint64_t> sent_ = 0;
    std::thread thread_;
};

} // namespace test

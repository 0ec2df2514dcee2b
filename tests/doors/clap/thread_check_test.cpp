// A build with assertions ends a host that calls on the wrong thread, if the host itself says that it is.
#include "clap_host.h"
#include "sound.h"

#include "desk/private_folder.h"

#include <gtest/gtest.h>

namespace {

using namespace clap_test;

/// The entry point, which is linked into this program with assertions.
struct Entry {
    Entry() { clap_entry.init(""); }
    ~Entry() { clap_entry.deinit(); }
};

class ThreadCheck : public testing::Test {
  protected:
    desk::PrivateFolder folder;
    Entry entry;
    Host host;
    Instance instance{clap_entry, host};
};

TEST_F(ThreadCheck, PassesWhatAHostDoesByTheRules) {
    Row samples(64);
    float* const channels[] = {samples.data(), samples.data()};
    instance.set(0, 0.5);
    EXPECT_TRUE(instance.activate());
    EXPECT_EQ(instance.process(channels, channels, 64), CLAP_PROCESS_CONTINUE);
    instance.set(0, 0.25);
    EXPECT_TRUE(instance.load(instance.save().value()));
    EXPECT_EQ(instance.value(0), 0.25);
    instance.deactivate();
}

TEST_F(ThreadCheck, EndsAHostThatPlaysOnItsMainThread) {
    const clap_process_t block = {};
    EXPECT_DEATH(instance.plugin()->process(instance.plugin(), &block), "another thread than one for audio");
}

TEST_F(ThreadCheck, EndsAHostThatAsksOnItsAudioThread) {
    host.isAudioCall = true;
    double value = 0.0;
    EXPECT_DEATH(instance.parameters().get_value(instance.plugin(), 0, &value),
                 "another thread than its main one");
    EXPECT_DEATH(instance.plugin()->activate(instance.plugin(), 44100.0, 1, 512),
                 "another thread than its main one");
    host.isAudioCall = false;
}

TEST_F(ThreadCheck, WantsAFlushWhereItsStateSays) {
    host.isAudioCall = true;
    EXPECT_DEATH(instance.parameters().flush(instance.plugin(), nullptr, nullptr),
                 "another thread than its main one");
    host.isAudioCall = false;
    instance.activate();
    EXPECT_DEATH(instance.parameters().flush(instance.plugin(), nullptr, nullptr),
                 "another thread than one for audio");
}

TEST_F(ThreadCheck, TrustsAHostThatDoesNotTellItsThreadsApart) {
    Host trusting(Host::kLog);
    Instance other(clap_entry, trusting);
    const clap_process_t block = {};
    EXPECT_EQ(other.plugin()->process(other.plugin(), &block), CLAP_PROCESS_CONTINUE);
}

} // namespace

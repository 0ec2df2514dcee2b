// Any lists of events in blocks of any length: no byte is read or written that is not the instance's, and
// what it tells of itself stays in order and within the ranges.
//
// The input is a row of steps: a block or a flush with the events before it, a reset, another rate.
#include "clap_instance.h"

#include "byte_source.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

using clap_test::Events;

/// An event of any kind and size.
void addAnyEvent(Events& events, ByteSource& source) {
    constexpr std::uint32_t headSize = sizeof(clap_event_header_t), largest = 96;
    clap_event_header_t header = {};
    header.size = headSize + source.byte() % (largest - headSize + 1);
    header.time = source.word();
    header.space_id = source.byte() % 2;
    header.type = source.byte() % 16;
    std::vector<unsigned char> bytes(header.size);
    const auto content = source.bytes(header.size - headSize);
    std::memcpy(bytes.data(), &header, headSize);
    std::copy(content.begin(), content.end(), bytes.begin() + headSize);
    events.add(bytes.data(), bytes.size());
}

void addEvent(Events& events, ByteSource& source) {
    switch (source.byte() % 4) {
    case 0: {
        const clap_id id = source.byte() % 20;
        const std::uint32_t time = source.byte();
        events.value(id == 19 ? 1000 : id, static_cast<double>(source.anyFloat()), time);
        break;
    }
    case 1: {
        const std::uint8_t status = source.byte(), second = source.byte(), third = source.byte();
        events.midi(status, second, third, source.byte());
        break;
    }
    case 2:
        addAnyEvent(events, source);
        break;
    default:
        events.nothing();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteSource source(data, size);
    ClapInstance& instance = ClapInstance::forNextInput();
    Events events;
    while (!source.isEmpty()) {
        switch (source.byte() % 8) {
        case 0:
            instance.process(source.byte(), events);
            events.clear();
            break;
        case 1:
            instance.flush(events);
            events.clear();
            break;
        case 2:
            instance->reset();
            break;
        case 3:
            if (!instance->activate(static_cast<double>(source.anyFloat())))
                promise(instance->activate(), "a usual rate is taken");
            break;
        default:
            addEvent(events, source);
        }
    }
    instance.process(100, events);
    instance.promiseToBeItself();
    return 0;
}

// A host's events ahead of a block, as far as they mean something here.
#pragma once

#include "doors/clap/parameter_list.h"

#include <clap/events.h>

#include <cmath>
#include <cstdint>

namespace clap_door {

/// The event if it is of this type; null for events of other spaces, of other types or cut short.
template <class Event>
const Event* eventAs(const clap_event_header_t& header, std::uint16_t type) {
    const bool isIt =
        header.space_id == CLAP_CORE_EVENT_SPACE_ID && header.type == type && header.size >= sizeof(Event);
    return isIt ? reinterpret_cast<const Event*>(&header) : nullptr;
}

/// A new value of one of our parameters, or null. Whichever note it is meant for, it is meant for all.
inline const clap_event_param_value_t* newValueIn(const clap_event_header_t& header) {
    const auto* const event = eventAs<clap_event_param_value_t>(header, CLAP_EVENT_PARAM_VALUE);
    return event && indexOf(event->param_id) && !std::isnan(event->value) ? event : nullptr;
}

/// A MIDI message for the one port that there is, or null.
inline const clap_event_midi_t* messageIn(const clap_event_header_t& header) {
    const auto* const event = eventAs<clap_event_midi_t>(header, CLAP_EVENT_MIDI);
    return event && event->port_index == 0 ? event : nullptr;
}

/// Calls `take` with each event, in the order of the list. Takes null for an empty list. Allocates nothing.
template <class Take>
void forEachEvent(const clap_input_events_t* list, const Take& take) {
    if (!list)
        return;
    const std::uint32_t count = list->size(list);
    for (std::uint32_t i = 0; i < count; ++i)
        if (const clap_event_header_t* const event = list->get(list, i))
            take(*event);
}

} // namespace clap_door

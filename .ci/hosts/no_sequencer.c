/* Stands in for the MIDI sequencer of a kernel that has none: Qtractor does not start without one. What
   reaches the kernel succeeds and does nothing; all else is ALSA's own. For LD_PRELOAD. */
#include <errno.h>

static int place;

int snd_seq_open(void** handle, const char* name, int streams, int mode) {
    (void)name, (void)streams, (void)mode;
    *handle = &place;
    return 0;
}

#define SUCCEEDS(name)                                                                                       \
    int name(void) {                                                                                         \
        return 0;                                                                                            \
    }
#define HAS_NO_MORE(name)                                                                                    \
    int name(void) {                                                                                         \
        return -ENOENT;                                                                                      \
    }

SUCCEEDS(snd_seq_close)
SUCCEEDS(snd_seq_set_client_name)
SUCCEEDS(snd_seq_alloc_queue)
SUCCEEDS(snd_seq_free_queue)
SUCCEEDS(snd_seq_control_queue)
SUCCEEDS(snd_seq_create_simple_port)
SUCCEEDS(snd_seq_delete_simple_port)
SUCCEEDS(snd_seq_drain_output)
SUCCEEDS(snd_seq_drop_input)
SUCCEEDS(snd_seq_drop_output)
SUCCEEDS(snd_seq_event_input_pending)
SUCCEEDS(snd_seq_event_output)
SUCCEEDS(snd_seq_event_output_direct)
SUCCEEDS(snd_seq_free_event)
SUCCEEDS(snd_seq_get_any_client_info)
SUCCEEDS(snd_seq_get_any_port_info)
SUCCEEDS(snd_seq_get_port_info)
SUCCEEDS(snd_seq_set_port_info)
SUCCEEDS(snd_seq_get_queue_status)
SUCCEEDS(snd_seq_get_queue_tempo)
SUCCEEDS(snd_seq_set_queue_tempo)
SUCCEEDS(snd_seq_set_queue_timer)
SUCCEEDS(snd_seq_poll_descriptors)
SUCCEEDS(snd_seq_poll_descriptors_count)
SUCCEEDS(snd_seq_remove_events)
SUCCEEDS(snd_seq_subscribe_port)
SUCCEEDS(snd_seq_unsubscribe_port)
HAS_NO_MORE(snd_seq_event_input)
HAS_NO_MORE(snd_seq_query_next_client)
HAS_NO_MORE(snd_seq_query_next_port)
HAS_NO_MORE(snd_seq_query_port_subscribers)

int snd_seq_client_id(void* handle) {
    (void)handle;
    return 128;
}

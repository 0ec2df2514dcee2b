/* Counts what a thread asks of the allocator and of locks, in its own code and in every library it calls. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* What a thread asked for while it was watched. */
struct WatchedCalls {
    int count;
    const char* first; /* the function's name; null if there was none */
};

/* Watches the calling thread until stopWatchingCalls, which must come on the same thread. */
void startWatchingCalls(void);
struct WatchedCalls stopWatchingCalls(void);

#ifdef __cplusplus
}
#endif

/* Stands in front of the C library's allocator and locks for the whole process, the loaded plug-in included:
 * symbols of the executable come first. Each call goes on to the real function; on a thread that is being
 * watched it is counted before. Plain C, since this must work before anything else of the program does. */
#define _GNU_SOURCE
#include "watched_calls.h"

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <stddef.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <time.h>

#define IN_FRONT __attribute__((visibility("default")))

static __thread int watching;
static __thread struct WatchedCalls seen;

void startWatchingCalls(void) {
    struct WatchedCalls none = {0, NULL};
    seen = none;
    watching = 1;
}

struct WatchedCalls stopWatchingCalls(void) {
    watching = 0;
    return seen;
}

static void note(const char* name) {
    if (watching && seen.count++ == 0)
        seen.first = name;
}

/* The allocator's own names, which need no search: a search may allocate. */
extern void* __libc_malloc(size_t);
extern void* __libc_calloc(size_t, size_t);
extern void* __libc_realloc(void*, size_t);
extern void __libc_free(void*);
extern void* __libc_memalign(size_t, size_t);

IN_FRONT void* malloc(size_t size) {
    note("malloc");
    return __libc_malloc(size);
}

IN_FRONT void* calloc(size_t count, size_t size) {
    note("calloc");
    return __libc_calloc(count, size);
}

IN_FRONT void* realloc(void* block, size_t size) {
    note("realloc");
    return __libc_realloc(block, size);
}

IN_FRONT void free(void* block) {
    note("free");
    __libc_free(block);
}

IN_FRONT int posix_memalign(void** block, size_t alignment, size_t size) {
    note("posix_memalign");
    *block = __libc_memalign(alignment, size);
    return *block ? 0 : 12;
}

IN_FRONT void* aligned_alloc(size_t alignment, size_t size) {
    note("aligned_alloc");
    return __libc_memalign(alignment, size);
}

IN_FRONT void* memalign(size_t alignment, size_t size) {
    note("memalign");
    return __libc_memalign(alignment, size);
}

/* A function that passes a call of `name` on to the next library that has it. */
#define PASS_ON(result, name, parameters, arguments)                                                         \
    IN_FRONT result name parameters {                                                                        \
        static result(*next) parameters;                                                                     \
        note(#name);                                                                                         \
        if (!next)                                                                                           \
            *(void**)&next = dlsym(RTLD_NEXT, #name);                                                        \
        return next arguments;                                                                               \
    }

PASS_ON(void*, mmap, (void* address, size_t size, int protection, int flags, int file, off_t offset),
        (address, size, protection, flags, file, offset))
PASS_ON(int, munmap, (void* address, size_t size), (address, size))

PASS_ON(int, pthread_mutex_lock, (pthread_mutex_t * mutex), (mutex))
PASS_ON(int, pthread_mutex_trylock, (pthread_mutex_t * mutex), (mutex))
PASS_ON(int, pthread_mutex_timedlock, (pthread_mutex_t * mutex, const struct timespec* limit), (mutex, limit))
PASS_ON(int, pthread_mutex_unlock, (pthread_mutex_t * mutex), (mutex))
PASS_ON(int, pthread_rwlock_rdlock, (pthread_rwlock_t * lock), (lock))
PASS_ON(int, pthread_rwlock_wrlock, (pthread_rwlock_t * lock), (lock))
PASS_ON(int, pthread_rwlock_tryrdlock, (pthread_rwlock_t * lock), (lock))
PASS_ON(int, pthread_rwlock_trywrlock, (pthread_rwlock_t * lock), (lock))
PASS_ON(int, pthread_rwlock_unlock, (pthread_rwlock_t * lock), (lock))
PASS_ON(int, pthread_spin_lock, (pthread_spinlock_t * lock), (lock))
PASS_ON(int, pthread_spin_trylock, (pthread_spinlock_t * lock), (lock))
PASS_ON(int, pthread_spin_unlock, (pthread_spinlock_t * lock), (lock))
PASS_ON(int, pthread_cond_wait, (pthread_cond_t * condition, pthread_mutex_t* mutex), (condition, mutex))
PASS_ON(int, pthread_cond_timedwait,
        (pthread_cond_t * condition, pthread_mutex_t* mutex, const struct timespec* limit),
        (condition, mutex, limit))
PASS_ON(int, pthread_cond_signal, (pthread_cond_t * condition), (condition))
PASS_ON(int, pthread_cond_broadcast, (pthread_cond_t * condition), (condition))
PASS_ON(int, pthread_once, (pthread_once_t * once, void (*function)(void)), (once, function))
PASS_ON(int, sem_wait, (sem_t * semaphore), (semaphore))
PASS_ON(int, sem_trywait, (sem_t * semaphore), (semaphore))
PASS_ON(int, sem_timedwait, (sem_t * semaphore, const struct timespec* limit), (semaphore, limit))
PASS_ON(int, sem_post, (sem_t * semaphore), (semaphore))

/* The guard around the first use of a function's static object, which waits for other threads. */
PASS_ON(int, __cxa_guard_acquire, (void* guard), (guard))

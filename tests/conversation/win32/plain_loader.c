/* The poorest host there is: a C program that links nothing of ours. */
#include <windows.h>

#include <stdint.h>
#include <stdio.h>

typedef intptr_t (*Callback)(void*, int32_t, int32_t, intptr_t, void*, float);
typedef void* (*Entry)(Callback);

enum { audioMasterVersion = 1, effClose = 1 };

/* The head of the record, as far as it is needed here. */
struct Record {
    int32_t magic;
    intptr_t (*dispatcher)(struct Record*, int32_t, int32_t, intptr_t, void*, float);
};

static intptr_t host(void* effect, int32_t opcode, int32_t index, intptr_t value, void* ptr, float opt) {
    (void)effect, (void)index, (void)value, (void)ptr, (void)opt;
    return opcode == audioMasterVersion ? 2400 : 0;
}

static int converse(HMODULE library, const char* name) {
    Entry entry = (Entry)(void*)GetProcAddress(library, name);
    struct Record* record;
    if (!entry)
        return 3;
    record = entry(host);
    if (!record || record->magic != 0x56737450)
        return 4;
    return record->dispatcher(record, effClose, 0, 0, NULL, 0.0f) == 1 ? 0 : 5;
}

int main(int argc, char** argv) {
    static const char* const names[] = {"VSTPluginMain", "main", "MAIN"};
    int round, result = argc == 2 ? 0 : 1;
    /* Loaded, used and unloaded more than once, as hosts do when they scan. */
    for (round = 0; round < 3 && result == 0; ++round) {
        HMODULE library = LoadLibraryA(argv[1]);
        if (!library) {
            fprintf(stderr, "error %lu\n", (unsigned long)GetLastError());
            return 2;
        }
        result = converse(library, names[round]);
        FreeLibrary(library);
    }
    return result;
}

// A library that needs another one to be found.

extern "C" __declspec(dllimport) const char* sampleFolder();

extern "C" __declspec(dllexport) const char* folderOfSample() {
    return sampleFolder();
}

// A program that keeps its settings apart from the person's. Gives the number of the first step that went
// wrong.

#include "desk/host_settings.h"
#include "platform/settings.h"

int main() {
    desk::keepSettingsIn("C:\\a folder\\settings");
    if (platform::readSetting("SkinName"))
        return 1;
    if (!platform::writeSetting("SkinName", "private"))
        return 2;
    return platform::readSetting("SkinName") == "private" ? 0 : 3;
}

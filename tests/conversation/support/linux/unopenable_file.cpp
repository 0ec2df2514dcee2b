#include "support/unopenable_file.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

namespace conversation {

void makeUnopenable(const std::string& name) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, name.c_str(), sizeof address.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(descriptor, 0);
    ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(descriptor);
}

bool isUnopenable(const std::string& name) {
    return std::filesystem::is_socket(name);
}

} // namespace conversation

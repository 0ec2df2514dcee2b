#include "support/german_locale.h"

#include <clocale>
#include <stdexcept>

namespace conversation {

bool makeGermanLocale(const std::string&) {
    return true; // Windows knows every language by itself.
}

void becomeGerman() {
    if (!std::setlocale(LC_ALL, "German_Germany.1252"))
        throw std::runtime_error("this Windows knows no German");
}

} // namespace conversation

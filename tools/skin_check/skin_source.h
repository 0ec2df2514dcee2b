// The text of a skin as its author sees it: with lines and columns. The plug-in's own reader says only that a
// file is not well formed, and passes over a good deal in silence; this one reads the same dialect to the
// same tree and tells where and why.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tools::window {

/// Where something stands in a file, both from 1. A column is a character, a tab as well as any other.
struct Place {
    int line = 1;
    int column = 1;

    auto operator<=>(const Place&) const = default;
};

/// Something that the author should know of.
struct Finding {
    Place place;
    std::string text;
    /// A host that opens a skin with this in it ends at once.
    bool endsTheHost = false;
};

struct SourceAttribute {
    Place place;      ///< of the name
    std::string name; ///< as spelt
    Place valuePlace; ///< of the first byte between the quotes
    std::string value;
};

struct SourceElement {
    Place place;      ///< of the "<"
    std::string name; ///< as spelt
    std::vector<SourceAttribute> attributes;
    std::vector<SourceElement> children;
    Place textPlace;  ///< of the first byte of `text`
    std::string text; ///< the last run, as the plug-in's reader keeps it

    /// The first attribute of this name in any letter case; null if there is none.
    const SourceAttribute* find(std::string_view name) const;
};

struct SkinSource {
    /// Nothing if the plug-in's reader refuses the file; then the last finding says where and why.
    std::optional<SourceElement> root;
    std::vector<Finding> findings; ///< in the order of the file
};

/// Reads the bytes of a skin file.
SkinSource readSkinSource(std::string_view text);

/// The place of the byte at `offset` of a text that begins at `begin`.
Place placeWithin(std::string_view text, std::size_t offset, Place begin = {});

} // namespace tools::window

#include "tools/skin_check/skin_source.h"

#include "base/ascii.h"
#include "tools/common/text.h"

#include <algorithm>

namespace tools::window {

namespace {

/// As deep as the plug-in's reader goes.
constexpr int kDeepestElement = 1000;
/// As long as the name in a closing tag may be before the plug-in's reader ends the process.
constexpr std::size_t kLongestClosingName = 255;

/// Thrown where the plug-in's reader refuses the file.
struct Refused {
    std::size_t position;
    std::string reason;
    bool endsTheHost = false;
};

bool isBlank(char byte) {
    return byte == '\t' || byte == '\n' || byte == '\r' || byte == ' ';
}

std::string tag(std::string_view name) {
    return '<' + printable(name) + '>';
}

/// The beginning of what stands there, short enough to be quoted.
std::string excerpt(std::string_view text) {
    constexpr std::size_t most = 24;
    text = text.substr(0, std::min(text.find_first_of("\r\n"), text.size()));
    return text.size() > most ? inQuotes(std::string(text.substr(0, most)) + "...") : inQuotes(text);
}

class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}

    SkinSource scan() {
        SkinSource source;
        try {
            source.root = element(0);
            checkBehindRoot(*source.root);
        } catch (const Refused& refused) {
            find(refused.position, refused.reason);
            findings_.back().endsTheHost = refused.endsTheHost;
        }
        source.findings = std::move(findings_);
        return source;
    }

  private:
    // The text

    char here() const { return at(position_); }
    char at(std::size_t position) const { return position < text_.size() ? text_[position] : '\0'; }
    bool isAtEnd() const { return position_ >= text_.size(); }
    std::string_view rest(std::size_t position) const {
        return text_.substr(std::min(position, text_.size()));
    }
    bool stands(std::string_view what, std::size_t position) const {
        return rest(position).starts_with(what);
    }

    void skipBlanks() {
        while (isBlank(here()))
            ++position_;
    }

    std::string name() {
        const std::size_t begin = position_;
        while (base::isNameByte(here()))
            ++position_;
        return std::string(text_.substr(begin, position_ - begin));
    }

    /// Places are asked for from the front to the back, so each line end is counted once.
    Place place(std::size_t position) {
        if (position < counted_) {
            counted_ = 0;
            countedPlace_ = {};
        }
        countedPlace_ = placeWithin(text_.substr(counted_), position - counted_, countedPlace_);
        counted_ = position;
        return countedPlace_;
    }

    void find(std::size_t position, std::string text) {
        findings_.push_back({place(position), std::move(text)});
    }

    // The grammar

    SourceElement element(int depth) {
        skipBlanks();
        const std::size_t begin = position_;
        if (here() != '<' || !base::isLetter(at(begin + 1)))
            throw Refused{begin, whyNoElement(begin)};
        if (depth >= kDeepestElement)
            throw Refused{begin, "elements are nested deeper than any skin needs"};
        ++position_;
        SourceElement result;
        result.place = place(begin);
        result.name = name();
        attributes(result);
        if (here() == '>') {
            ++position_;
            content(result, depth);
        } else if (!endsEmpty()) {
            find(position_,
                 tag(result.name) + " ends here, at " + excerpt(rest(position_)) +
                     ", and what follows up to the next \"<\" is taken for text; is a quote, a \"/\" "
                     "or a \">\" missing?");
        }
        return result;
    }

    /// Takes "/>".
    bool endsEmpty() {
        if (here() != '/')
            return false;
        std::size_t behind = position_ + 1;
        while (isBlank(at(behind)))
            ++behind;
        if (behind >= text_.size())
            throw Refused{text_.size(), "the file ends inside a tag"};
        if (at(behind) != '>')
            return false;
        position_ = behind + 1;
        return true;
    }

    void attributes(SourceElement& owner) {
        skipBlanksInTag(owner);
        while (base::isLetter(here()) || here() == '_') {
            const std::size_t begin = position_;
            SourceAttribute attribute;
            attribute.place = place(begin);
            attribute.name = name();
            skipBlanksInTag(owner);
            if (here() != '=') {
                find(begin, "the attribute " + inQuotes(attribute.name) + " of " + tag(owner.name) +
                                " has no value and is ignored");
                continue;
            }
            ++position_;
            skipBlanksInTag(owner);
            value(owner, attribute);
            owner.attributes.push_back(std::move(attribute));
            skipBlanksInTag(owner);
        }
    }

    void skipBlanksInTag(const SourceElement& owner) {
        skipBlanks();
        if (isAtEnd())
            throw Refused{position_, "the file ends inside the tag " + tag(owner.name) + " of line " +
                                         std::to_string(owner.place.line)};
    }

    void value(const SourceElement& owner, SourceAttribute& attribute) {
        if (here() != '"')
            throw Refused{position_, "the value of " + inQuotes(attribute.name) + " of " + tag(owner.name) +
                                         " must be in double quotes"};
        const std::size_t begin = position_ + 1;
        const std::size_t end = text_.find('"', begin);
        if (end == std::string_view::npos)
            throw Refused{position_, "the value of " + inQuotes(attribute.name) + " of " + tag(owner.name) +
                                         " has no closing quote"};
        attribute.valuePlace = place(begin);
        attribute.value = text_.substr(begin, end - begin);
        checkEntities(begin, attribute.value);
        position_ = end + 1;
    }

    void content(SourceElement& owner, int depth) {
        for (;;) {
            skipBlanks();
            const std::size_t begin = position_;
            position_ = std::min(text_.find('<', begin), text_.size());
            if (isAtEnd())
                throw Refused{text_.size(), "the file ends, and " + tag(owner.name) + " of line " +
                                                std::to_string(owner.place.line) + " is not closed"};
            if (position_ > begin)
                takeText(owner, begin, position_);
            if (at(position_ + 1) == '/')
                return closingTag(owner);
            owner.children.push_back(element(depth + 1));
        }
    }

    void takeText(SourceElement& owner, std::size_t begin, std::size_t end) {
        if (!owner.text.empty())
            findings_.push_back(
                {owner.textPlace, "this text of " + tag(owner.name) +
                                      " is lost: only the last one between its children counts"});
        owner.textPlace = place(begin);
        owner.text = text_.substr(begin, end - begin);
        checkEntities(begin, owner.text);
    }

    void closingTag(const SourceElement& owner) {
        const std::size_t begin = position_;
        const std::string opened = tag(owner.name) + " of line " + std::to_string(owner.place.line);
        position_ += 2;
        skipBlanks();
        const std::string closed = name();
        if (closed.size() > kLongestClosingName)
            throw Refused{
                begin, "the name in this closing tag is longer than 255 characters, which crashes the host",
                true};
        skipBlanks();
        if (here() != '>')
            throw Refused{position_, "the tag that closes " + opened + " must end with \">\""};
        if (!base::equalIgnoringCase(closed, owner.name))
            throw Refused{begin,
                          "</" + printable(closed) + "> is here, but " + opened + " must be closed first"};
        ++position_;
    }

    // What is worth saying

    std::string whyNoElement(std::size_t begin) const {
        struct Opening {
            std::string_view bytes;
            const char* reason;
        };
        static constexpr Opening openings[] = {
            {"<?", "a declaration like <?xml ...?> is not understood; leave it out"},
            {"<!--", "comments are not understood; leave them out"},
            {"<![CDATA[", "CDATA is not understood; write the text itself"},
            {"<!", "declarations that begin with <! are not understood; leave them out"},
            {"</", "this closes what was never opened"},
            {"\xEF\xBB\xBF", "the file begins with a byte-order mark; save it as UTF-8 without one"},
            {"\xFF\xFE", "the file is UTF-16; save it as UTF-8"},
            {"\xFE\xFF", "the file is UTF-16; save it as UTF-8"},
        };
        if (begin >= text_.size())
            return begin == 0 ? "the file is empty" : "the file ends where an element is expected";
        for (const Opening& opening : openings)
            if (stands(opening.bytes, begin))
                return opening.reason;
        if (at(begin) == '<')
            return "the name of an element must follow \"<\" at once and begin with a letter";
        return "a file begins with an element, and not with " + excerpt(rest(begin));
    }

    void checkEntities(std::size_t begin, std::string_view text) {
        for (std::size_t from = 0; (from = text.find('&', from)) != std::string_view::npos; ++from) {
            std::size_t end = from + 1;
            while (end < text.size() && (base::isNameByte(text[end]) || text[end] == '#'))
                ++end;
            if (end > from + 1 && end < text.size() && text[end] == ';')
                find(begin + from, inQuotes(text.substr(from, end + 1 - from)) +
                                       " stays as it is written here; entities are not replaced");
        }
    }

    void checkBehindRoot(const SourceElement& root) {
        skipBlanks();
        if (!isAtEnd())
            find(position_, "everything after the end of " + tag(root.name) + " is ignored");
    }

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t counted_ = 0;
    Place countedPlace_;
    std::vector<Finding> findings_;
};

} // namespace

const SourceAttribute* SourceElement::find(std::string_view wanted) const {
    const auto found = std::ranges::find_if(attributes, [&](const SourceAttribute& attribute) {
        return base::equalIgnoringCase(attribute.name, wanted);
    });
    return found == attributes.end() ? nullptr : &*found;
}

SkinSource readSkinSource(std::string_view text) {
    // For the plug-in's reader a zero byte is the end.
    const std::size_t zero = text.find('\0');
    SkinSource source = Scanner(text.substr(0, zero)).scan();
    if (zero != std::string_view::npos && !source.root)
        source.findings.back().text += "; the file ends here, at a zero byte";
    return source;
}

Place placeWithin(std::string_view text, std::size_t offset, Place begin) {
    for (const char byte : text.substr(0, offset)) {
        if (byte == '\n')
            begin = {begin.line + 1, 1};
        else if ((byte & 0xC0) != 0x80) // of a character in several bytes, the first one counts
            ++begin.column;
    }
    return begin;
}

} // namespace tools::window

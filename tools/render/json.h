// Writes one JSON value piece by piece, with the commas, the escapes and the indentation in the right places.
//
//     JsonWriter json;
//     json.beginObject();
//     json.field("frames", 48000);
//     json.endObject();
//     std::fputs(json.text().c_str(), stream);
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tools::render {

/// The text between double quotes, with everything escaped that JSON wants escaped. Bytes that are not UTF-8
/// are taken as Latin-1.
std::string jsonString(std::string_view bytes);

class JsonWriter {
  public:
    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    /// The name of the next value; inside an object.
    void name(std::string_view text);

    void value(std::string_view text) { put(jsonString(text)); }
    void value(const char* text) { value(std::string_view(text)); }
    void value(std::int64_t number) { put(std::to_string(number)); }
    void value(int number) { put(std::to_string(number)); }
    void value(bool flag) { put(flag ? "true" : "false"); }
    /// JSON knows no infinity: what is not finite becomes null.
    void value(double number);
    void value(float number);
    void null() { put("null"); }

    template <typename Value>
    void field(std::string_view fieldName, const Value& fieldValue) {
        name(fieldName);
        value(fieldValue);
    }

    /// All that was written, with a line end.
    std::string text() const { return text_ + '\n'; }

  private:
    void open(char bracket);
    void close(char bracket);
    void put(std::string_view piece);
    void separate();
    void newLine();

    std::string text_;
    int depth_ = 0;
    bool needsComma_ = false;
    bool isEmpty_ = true;
    bool afterName_ = false;
};

} // namespace tools::render

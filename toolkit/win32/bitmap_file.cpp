// Pictures are decoded by the toolkit, that is, by the system's own decoders.

#include "toolkit/toolkit.h"

#include "../picture_file.h"
#include "platform/win32/wide_text.h"

#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cpoint.h"
#include "vstgui/lib/platform/iplatformbitmap.h"
#include "vstgui/lib/platform/platform_win32.h"
#include "vstgui/lib/platform/platformfactory.h"
#include "vstgui/lib/platform/win32/direct2d/d2dbitmap.h"
#include "vstgui/lib/platform/win32/win32factory.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <wincodec.h>

namespace toolkit {

namespace {

bool hasSize(const VSTGUI::IPlatformBitmap& bitmap, const PictureSize& size) {
    return static_cast<std::int64_t>(bitmap.getSize().x) <= size.width &&
           static_cast<std::int64_t>(bitmap.getSize().y) <= size.height;
}

/// In the code page of the system, as Windows gives paths out.
std::wstring wideFromSystem(const std::string& text) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

bool isUtf8(const std::string& text) {
    return text.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                               static_cast<int>(text.size()), nullptr, 0) > 0;
}

/// An open file, closed with its scope.
class File {
  public:
    explicit File(const std::wstring& path)
        : handle_(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~File() {
        if (handle_ != INVALID_HANDLE_VALUE)
            CloseHandle(handle_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// In bytes; nothing if it is not open or no file.
    std::optional<std::uint64_t> size() const {
        LARGE_INTEGER size = {};
        if (GetFileType(handle_) != FILE_TYPE_DISK || !GetFileSizeEx(handle_, &size))
            return std::nullopt;
        return static_cast<std::uint64_t>(size.QuadPart);
    }
    bool read(FileBytes& bytes) const {
        DWORD got = 0;
        return ReadFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr) &&
               got == bytes.size();
    }

  private:
    HANDLE handle_;
};

/// Whether every row can be decoded. The toolkit decodes when it draws, and a file that turns out to be torn
/// would then be a picture with a hole in it.
bool isWhole(VSTGUI::D2DBitmap& picture) {
    IWICBitmapSource* const source = picture.getSource();
    if (!source)
        return false;
    const auto width = static_cast<INT>(picture.getSize().x), height = static_cast<INT>(picture.getSize().y);
    std::vector<BYTE> row(static_cast<std::size_t>(width) * 4);
    for (INT y = 0; y < height; ++y) {
        const WICRect part = {0, y, width, 1};
        const auto size = static_cast<UINT>(row.size());
        if (FAILED(source->CopyPixels(&part, size, size, row.data())))
            return false;
    }
    return true;
}

} // namespace

// Paths of pictures are in UTF-8 here: a skin names them so, whatever code page the system has for its own.
std::optional<std::string> findPicture(const std::string& folder, const std::string& name) {
    const auto isSlash = [](char c) { return c == '/' || c == '\\'; };
    if (std::all_of(name.begin(), name.end(), isSlash))
        return std::nullopt;
    std::wstring path = wideFromSystem(folder);
    if (!path.empty() && path.back() != L'/' && path.back() != L'\\')
        path += L'\\';
    path += isUtf8(name) ? platform::wide(name) : wideFromSystem(name);
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES ? std::optional(platform::utf8(path))
                                                                       : std::nullopt;
}

std::optional<FileBytes> readUpTo(const std::string& path, std::uint64_t limit) {
    const File file(platform::wide(path));
    const auto size = file.size();
    if (!size || *size > limit)
        return std::nullopt;
    FileBytes bytes(static_cast<std::size_t>(*size));
    return file.read(bytes) ? std::optional(std::move(bytes)) : std::nullopt;
}

namespace {

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};

/// The bytes as a stream that keeps them; null without memory.
std::unique_ptr<IStream, Release> streamOf(const FileBytes& bytes) {
    IStream* made = nullptr;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &made)))
        return nullptr;
    std::unique_ptr<IStream, Release> stream(made);
    const bool isWritten =
        SUCCEEDED(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr)) &&
        SUCCEEDED(stream->Seek({}, STREAM_SEEK_SET, nullptr));
    return isWritten ? std::move(stream) : nullptr;
}

} // namespace

VSTGUI::PlatformBitmapPtr readBitmap(const std::string& path, PictureAllowance& allowance) {
    const auto* const factory = VSTGUI::getPlatformFactory().asWin32Factory();
    const auto file = readPictureFile(path, allowance);
    if (!factory->getWICImagingFactory() || !file)
        return nullptr;
    const auto stream = streamOf(*file);
    // Not from the toolkit's factory, which ends the process when memory runs out.
    const auto bitmap = VSTGUI::makeOwned<VSTGUI::D2DBitmap>();
    return stream && bitmap->loadFromStream(stream.get()) && hasSize(*bitmap, *promisedSize(*file)) &&
                   isWhole(*bitmap)
               ? bitmap
               : nullptr;
}

VSTGUI::SharedPointer<VSTGUI::CBitmap> makeWindowBitmap(const VSTGUI::PlatformBitmapPtr& pixels,
                                                        std::shared_ptr<DisplayMemory>) {
    return VSTGUI::makeOwned<VSTGUI::CBitmap>(pixels);
}

} // namespace toolkit

#include "support/FileSizeLimit.h"
#include "support/WindowsFileWrites.h"

#include <algorithm>

class FileSizeLimit::Limit {
public:
    explicit Limit(quint64 bytes) : limit(bytes) {}

private:
    DWORD roomFor(HANDLE file, DWORD wanted) const
    {
        LARGE_INTEGER place{};
        SetFilePointerEx(file, {}, &place, FILE_CURRENT);
        const auto here = static_cast<quint64>(place.QuadPart);
        return here >= limit ? 0 : static_cast<DWORD>(std::min<quint64>(wanted, limit - here));
    }

    const quint64 limit;
    const WindowsFileWrites writes{[this](HANDLE file, DWORD wanted) { return roomFor(file, wanted); }};
};

FileSizeLimit::FileSizeLimit(quint64 bytes) : limit(std::make_unique<Limit>(bytes)) {}

FileSizeLimit::~FileSizeLimit() = default;

#pragma once

#include <QtGlobal>

#include <memory>

/// While it lives, files of this process end at a size, as on a disk that is
/// full.
class FileSizeLimit {
public:
    explicit FileSizeLimit(quint64 bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    class Limit;
    std::unique_ptr<Limit> limit;
};

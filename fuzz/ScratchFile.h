#pragma once

#include "fuzz/Promise.h"

#include <QByteArray>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace fuzz {

/// A file of this process, in TMPDIR, which is best in memory.
class ScratchFile {
public:
    explicit ScratchFile(const char* extension)
        : path(std::filesystem::temp_directory_path()
               / ("tarvel-fuzz-" + std::to_string(getpid()) + extension))
    {
    }
    ~ScratchFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    void write(const QByteArray& bytes) const
    {
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file.write(bytes.constData(), bytes.size());
        file.close();
        require(file.good(), "the scratch file takes the input");
    }

    const std::filesystem::path path;
};

} // namespace fuzz

#pragma once

#include <QString>

#include <memory>

/// A file of a rip that takes a few bytes and then makes its writer wait.
class StuckFile {
public:
    explicit StuckFile(const QString& path);
    ~StuckFile();
    StuckFile(const StuckFile&) = delete;
    StuckFile& operator=(const StuckFile&) = delete;

    bool isMade() const;
    bool isWrittenTo() const;
    /// Takes all that comes, until the writer has closed the file.
    void letGo();

private:
    class File;
    std::unique_ptr<File> file;
};

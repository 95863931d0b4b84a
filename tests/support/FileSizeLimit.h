#pragma once

#include <csignal>
#include <sys/resource.h>

/// While it lives, files of this process end at a size, as on a disk that is
/// full.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &previous);
        const rlimit limited{bytes, previous.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &previous);
        std::signal(SIGXFSZ, previousHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit previous{};
    void (*previousHandler)(int) = SIG_DFL;
};

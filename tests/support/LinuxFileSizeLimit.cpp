#include "support/FileSizeLimit.h"

#include <csignal>
#include <sys/resource.h>

class FileSizeLimit::Limit {
public:
    explicit Limit(rlim_t bytes)
    {
        previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &previous);
        const rlimit limited{bytes, previous.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~Limit()
    {
        setrlimit(RLIMIT_FSIZE, &previous);
        std::signal(SIGXFSZ, previousHandler);
    }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;

private:
    rlimit previous{};
    void (*previousHandler)(int) = SIG_DFL;
};

FileSizeLimit::FileSizeLimit(quint64 bytes) : limit(std::make_unique<Limit>(bytes)) {}

FileSizeLimit::~FileSizeLimit() = default;

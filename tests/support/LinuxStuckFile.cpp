#include "support/StuckFile.h"

#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <thread>

class StuckFile::File {
public:
    explicit File(const QString& path)
    {
        const QByteArray name = QFile::encodeName(path);
        made = mkfifo(name.constData(), 0600) == 0;
        reader = open(name.constData(), O_RDONLY | O_NONBLOCK);
    }
    ~File()
    {
        letGo();
        if (drain.joinable())
            drain.join();
        close(reader);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isMade() const { return made && reader >= 0; }
    bool isWrittenTo() const
    {
        pollfd asked{reader, POLLIN, 0};
        return poll(&asked, 1, 0) == 1 && (asked.revents & POLLIN);
    }
    void letGo()
    {
        if (drain.joinable())
            return;
        fcntl(reader, F_SETFL, 0);
        drain = std::thread([this] {
            std::array<char, 65536> bytes;
            while (read(reader, bytes.data(), bytes.size()) > 0) {
            }
        });
    }

private:
    bool made = false;
    int reader = -1;
    std::thread drain;
};

StuckFile::StuckFile(const QString& path) : file(std::make_unique<File>(path)) {}

StuckFile::~StuckFile() = default;

bool StuckFile::isMade() const
{
    return file->isMade();
}

bool StuckFile::isWrittenTo() const
{
    return file->isWrittenTo();
}

void StuckFile::letGo()
{
    file->letGo();
}

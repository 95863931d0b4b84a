#pragma once

#include <QFile>
#include <QString>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <thread>

/// A file of a rip that takes a few bytes and then makes its writer wait.
class StuckFile {
public:
    explicit StuckFile(const QString& path)
    {
        const QByteArray name = QFile::encodeName(path);
        made = mkfifo(name.constData(), 0600) == 0;
        reader = open(name.constData(), O_RDONLY | O_NONBLOCK);
    }
    ~StuckFile()
    {
        letGo();
        if (drain.joinable())
            drain.join();
        close(reader);
    }
    StuckFile(const StuckFile&) = delete;
    StuckFile& operator=(const StuckFile&) = delete;

    bool isMade() const { return made && reader >= 0; }
    bool isWrittenTo() const
    {
        pollfd asked{reader, POLLIN, 0};
        return poll(&asked, 1, 0) == 1 && (asked.revents & POLLIN);
    }
    /// Takes all that comes, until the writer has closed the file.
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

#include "codecs/OggPages.h"

#include <ogg/ogg.h>

#include <algorithm>

namespace {

constexpr std::size_t pieceBytes = 64 * 1024;

struct Sync {
    Sync() { ogg_sync_init(&state); }
    ~Sync() { ogg_sync_clear(&state); }
    Sync(const Sync&) = delete;
    Sync& operator=(const Sync&) = delete;

    ogg_sync_state state;
};

/// Puts the first packets of the first logical stream together.
class HeaderPackets {
public:
    explicit HeaderPackets(std::size_t count) : wanted(count) {}
    ~HeaderPackets()
    {
        if (started)
            ogg_stream_clear(&stream);
    }
    HeaderPackets(const HeaderPackets&) = delete;
    HeaderPackets& operator=(const HeaderPackets&) = delete;

    void add(ogg_page& page)
    {
        if (packets.size() >= wanted)
            return;
        if (!started)
            started = ogg_stream_init(&stream, ogg_page_serialno(&page)) == 0;
        if (!started || ogg_stream_pagein(&stream, &page) != 0)
            return;
        ogg_packet packet;
        while (packets.size() < wanted && ogg_stream_packetout(&stream, &packet) == 1)
            packets.emplace_back(reinterpret_cast<const char*>(packet.packet), packet.bytes);
    }

    std::vector<QByteArray> packets;

private:
    std::size_t wanted;
    bool started = false;
    ogg_stream_state stream;
};

} // namespace

OggPages checkOggPages(std::FILE* file, std::size_t headerPackets)
{
    OggPages result;
    HeaderPackets headers(headerPackets);
    Sync sync;
    std::uint64_t read = 0;
    for (;;) {
        ogg_page page;
        const long pageBytes = ogg_sync_pageseek(&sync.state, &page);
        if (pageBytes < 0)
            break;
        if (pageBytes > 0) {
            result.bytes += static_cast<std::uint64_t>(pageBytes);
            headers.add(page);
            continue;
        }
        char* buffer = ogg_sync_buffer(&sync.state, pieceBytes);
        const std::size_t taken = buffer ? std::fread(buffer, 1, pieceBytes, file) : 0;
        if (taken == 0) {
            result.whole = result.bytes == read;
            break;
        }
        read += taken;
        ogg_sync_wrote(&sync.state, static_cast<long>(taken));
    }
    result.headers = std::move(headers.packets);
    std::rewind(file);
    return result;
}

CFile undamagedPart(CFile file, const OggPages& pages)
{
    if (pages.whole)
        return file;
    CFile copy(std::tmpfile());
    std::vector<char> buffer(pieceBytes);
    for (std::uint64_t left = pages.bytes; copy && left > 0;) {
        const std::size_t count =
            std::fread(buffer.data(), 1, std::min<std::uint64_t>(left, pieceBytes), file.get());
        if (count == 0 || std::fwrite(buffer.data(), 1, count, copy.get()) != count)
            return nullptr;
        left -= count;
    }
    if (copy)
        std::rewind(copy.get());
    return copy;
}

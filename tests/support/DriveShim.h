#pragma once

#include "disc/DrivePlatform.h"

#include <functional>
#include <utility>

/// A layer over another platform that lets a test bend single answers. Each
/// function sees the answer of the drive below, and may change it.
class DriveShim : public DrivePlatform {
public:
    explicit DriveShim(DrivePlatform& below) : inner(below) {}

    std::function<void()> onOpen;
    std::function<void(DriveReply&)> onVerify;
    std::function<void(std::span<quint8, 804>, DriveReply&)> onToc;
    std::function<void(quint32 lba, std::span<quint8>, bool guarded, DriveReply&)> onRaw;
    std::function<void(std::span<const quint8>, std::span<quint8>, DriveReply&)> onPassThrough;
    std::function<void(std::optional<DriveDescriptor>&)> onDescriptor;

    QStringList enumerateDrives() override { return inner.enumerateDrives(); }
    std::unique_ptr<DriveDevice> open(const QString& letter) override
    {
        if (onOpen)
            onOpen();
        auto device = inner.open(letter);
        return device ? std::make_unique<Device>(*this, std::move(device)) : nullptr;
    }
    qint64 nowNanoseconds() override { return inner.nowNanoseconds(); }
    void sleepMilliseconds(int duration) override { inner.sleepMilliseconds(duration); }

private:
    class Device : public DriveDevice {
    public:
        Device(DriveShim& owner, std::unique_ptr<DriveDevice> below) : shim(owner), device(std::move(below))
        {
        }

        DriveReply checkVerify() override
        {
            DriveReply reply = device->checkVerify();
            if (shim.onVerify)
                shim.onVerify(reply);
            return reply;
        }
        DriveReply readToc(std::span<quint8, 804> table) override
        {
            DriveReply reply = device->readToc(table);
            if (shim.onToc)
                shim.onToc(table, reply);
            return reply;
        }
        DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) override
        {
            DriveReply reply = device->readRaw(lba, count, data, guarded);
            if (shim.onRaw)
                shim.onRaw(lba, data, guarded, reply);
            return reply;
        }
        DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override
        {
            DriveReply reply = device->passThrough(command, data);
            if (shim.onPassThrough)
                shim.onPassThrough(command, data, reply);
            return reply;
        }
        std::optional<DriveDescriptor> descriptor() override
        {
            auto found = device->descriptor();
            if (shim.onDescriptor)
                shim.onDescriptor(found);
            return found;
        }

    private:
        DriveShim& shim;
        std::unique_ptr<DriveDevice> device;
    };

    DrivePlatform& inner;
};

#include "disc/DriveModel.h"

#include "disc/PassThroughAlignment.h"

#include <array>

namespace {

constexpr size_t inquiryBytes = 96;

QString cleanText(const QByteArray& text)
{
    return QString::fromLatin1(text.left(text.indexOf('\0') < 0 ? text.size() : text.indexOf('\0')))
        .simplified();
}

QString joinModel(const QString& vendor, const QString& product)
{
    if (product.isEmpty())
        return {};
    return vendor.isEmpty() ? product : vendor + QStringLiteral(" - ") + product;
}

} // namespace

QString driveModelText(DriveDevice& device)
{
    const auto descriptor = device.descriptor();
    if (!descriptor)
        return {};

    constexpr std::array<quint8, 6> inquiry{0x12, 0, 0, 0, inquiryBytes, 0};
    alignas(PASS_THROUGH_ALIGNMENT) std::array<quint8, inquiryBytes> answer{};
    if (device.passThrough(inquiry, answer).ok) {
        const auto text = reinterpret_cast<const char*>(answer.data());
        const QString vendor = cleanText(QByteArray(text + 8, 8));
        const QString product = cleanText(QByteArray(text + 16, 16));
        if (!vendor.isEmpty() && !product.isEmpty())
            return joinModel(vendor, product);
    }

    QString vendor = cleanText(descriptor->vendor);
    QString product = cleanText(descriptor->product);
    const qsizetype blank = product.indexOf(u' ');
    if ((vendor.isEmpty() || vendor.compare(QLatin1String("ATA"), Qt::CaseInsensitive) == 0) && blank >= 0) {
        vendor = product.left(blank);
        product = product.mid(blank + 1).simplified();
    }
    return joinModel(vendor, product);
}

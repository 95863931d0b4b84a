#include "convert/FolderOfAudio.h"

#include "base/FilePath.h"
#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QDir>
#include <QDirIterator>

#include <filesystem>
#include <system_error>

FolderOfAudio::FolderOfAudio()
{
    QDir().mkpath(source());
}

FolderOfAudio::~FolderOfAudio()
{
    // QTemporaryDir leaves names behind that are no text.
    std::error_code ignored;
    std::filesystem::remove_all(toPath(place.path()), ignored);
}

QString FolderOfAudio::add(const QString& name, const QByteArray& bytes) const
{
    return writeFile(source(), name, bytes);
}

QString FolderOfAudio::addWave(const QString& name, quint32 seed, int sectors) const
{
    return add(name, wrapInWave(makeAudio(sectors, seed)));
}

QStringList FolderOfAudio::below(const QString& folder)
{
    QStringList paths;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        paths << QDir(folder).relativeFilePath(entries.next());
    paths.sort();
    return paths;
}

QByteArray samplesOf(const QString& path)
{
    const ToolResult result =
        runTool(QStringLiteral("sox"), {path, QStringLiteral("-t"), QStringLiteral("raw"),
                                        QStringLiteral("-e"), QStringLiteral("signed"), QStringLiteral("-b"),
                                        QStringLiteral("16"), QStringLiteral("-L"), QStringLiteral("-")});
    return result.ok() ? result.output : QByteArray();
}

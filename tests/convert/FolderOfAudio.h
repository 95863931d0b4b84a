#pragma once

#include <QByteArray>
#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A place for one conversion: a source folder "Album" beside an output folder
/// "Out", which is not there yet.
class FolderOfAudio {
public:
    FolderOfAudio();
    ~FolderOfAudio();
    FolderOfAudio(const FolderOfAudio&) = delete;
    FolderOfAudio& operator=(const FolderOfAudio&) = delete;

    QString top() const { return place.path(); }
    QString source() const { return top() + QStringLiteral("/Album"); }
    QString output() const { return top() + QStringLiteral("/Out"); }
    /// The folder that the first run makes.
    QString runFolder() const { return output() + QStringLiteral("/Album"); }

    /// A file of the source folder, with the path of it as result.
    QString add(const QString& name, const QByteArray& bytes) const;
    /// The same with some audio of its own for each seed.
    QString addWave(const QString& name, quint32 seed = 1, int sectors = 1) const;

    /// All files and folders below a folder, by relative path, sorted.
    static QStringList below(const QString& folder);
    QStringList outputTree() const { return below(output()); }

private:
    QTemporaryDir place;
};

/// The 16-bit samples of a file as little-endian bytes, read by an independent
/// program; empty when it refuses.
QByteArray samplesOf(const QString& path);

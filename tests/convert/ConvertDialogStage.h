#pragma once

#include "convert/ConvertDialogView.h"
#include "convert/FolderOfAudio.h"
#include "support/DialogWatcher.h"
#include "support/Language.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

#include <memory>

/// An open Convert dialog in one of the two languages, and a folder to convert.
class ConvertDialogStage : public ::testing::TestWithParam<int> {
protected:
    ConvertDialogStage()
    {
        speak(GetParam());
        dialog = std::make_unique<ConvertDialog>();
        dialog->show();
    }

    ConvertDialogView view() const { return ConvertDialogView(dialog.get()); }

    static QString text(const char* ja, const char* en) { return textIn(GetParam(), ja, en); }
    static QString music() { return QStandardPaths::writableLocation(QStandardPaths::MusicLocation); }

    /// Fills in the folders and clicks.
    /// @return the status text afterwards
    QString convert(const QString& source, const QString& output) const
    {
        view().fill(source, output);
        view().click();
        return view().status();
    }
    QString convert() const { return convert(place.source(), place.output()); }

    static QString nothingFound()
    {
        return text("対応する音声ファイル(.wav/.aiff/.mp3/.flac/.aac/.m4a/.ogg/.opus/.wv/.dsf/.dff)"
                    "が見つかりませんでした。",
                    "No supported audio files (.wav/.aiff/.mp3/.flac/.aac/.m4a/.ogg/.opus/.wv/.dsf/.dff) "
                    "were found.");
    }
    /// What the status says of a run in which all went well.
    static QString allDone(int count)
    {
        return text("完了: %1件中 %1件成功", "Done: %1 of %1 files converted").arg(count);
    }

    FolderOfAudio place;
    std::unique_ptr<ConvertDialog> dialog;
};

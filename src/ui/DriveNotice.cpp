#include "ui/DriveNotice.h"

#include "base/Language.h"

QString driveIsShutNotice()
{
    return pickLang("ドライブを開けませんでした。使用中でないか、権限があるかを確認してください。",
                    "The drive could not be opened. Is it in use, or is the permission missing?");
}

QString noDiscNotice(DriveFailure failure)
{
    switch (failure) {
    case DriveFailure::becomingReady:
        return pickLang(
            "ドライブの準備がまだできていません。少し待ってから Back、Next の順に押してください。",
            "The drive is still getting ready. Wait a moment, then press Back and Next.");
    case DriveFailure::notReady:
        return pickLang("ディスクが入っていないか、ドライブの準備ができていません。"
                        "ディスクを入れて Back、Next の順に押してください。",
                        "There is no disc in the drive, or it is not ready. "
                        "Insert a disc, then press Back and Next.");
    default:
        return pickLang("ディスクの目次 (TOC) を読み取れませんでした。音楽 CD かどうか確認してください。",
                        "The drive could not read the disc's table of contents. Is it an audio CD?");
    }
}

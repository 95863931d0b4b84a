#pragma once

#include <QtGlobal>

namespace fuzz {

/// Keeps the debug log of the parsers out of a fuzzer's own output.
inline void beQuiet()
{
    static const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    (void)previous;
}

} // namespace fuzz

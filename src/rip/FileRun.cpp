// The run over one audio file.

#include "base/Language.h"
#include "rip/RipWorker.h"

void RipWorker::runFileMode()
{
    // No decoder reads any format yet.
    Q_EMIT error(pickLang("対応していないファイル形式です: ", "Unsupported file format: ") + sourceAudioFile);
}

#pragma once

#include "codecs/StreamDecoder.h"

/// DSF, one-bit audio in blocks of one channel each. Delivers an eighth of the
/// DSD rate, one frame for each byte of a channel, the padding of the last block
/// included. A file whose block would take more than 256 MiB is refused.
class DsfDecoder : public StreamDecoder {
public:
    DsfDecoder();
};

#include "codecs/EncoderOptions.h"

EncoderOptions encoderOptions;

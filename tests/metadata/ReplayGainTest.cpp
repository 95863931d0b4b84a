#include "metadata/TaggedFile.h"

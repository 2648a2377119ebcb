// For programs that also run where there are no files.
#include "utils/platform.h"

bool ROUTERUtils_isFileSystemSupported() {
    return true;
}

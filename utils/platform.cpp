#include "utils/platform.h"

bool ROUTERUtils_isFileSystemSupported() {
    return true;
}

// What the platform that the service runs on can do.
#pragma once

// Always true: every platform that this library is built for has files.
inline bool ROUTERUtils_isFileSystemSupported() {
    return true;
}

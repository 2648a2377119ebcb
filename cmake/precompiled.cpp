// CMake builds no library without a source file: this is the one for libraries of precompiled headers.

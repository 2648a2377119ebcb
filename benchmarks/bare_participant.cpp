// The least that a program of this system can be: one participant, a prompt, and the end with its input.
#include "benchmarks/raw_dds.h"

#include <cstdio>
#include <cstdlib>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fprintf(stderr, "usage: %s <domain id>\n", arguments[0]);
        return 2;
    }
    const raw::Participant participant(std::atoi(arguments[1]));
    std::printf("> ");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

// How long a benchmark waits for its other side before it gives up, and how it prints a round.
#pragma once

#include <chrono>
#include <cstdio>

// A first request is lost until both sides have discovered each other, so it is sent again.
constexpr int PROBES = 20;
constexpr int PROBE_SECONDS = 1;
constexpr int ANSWER_SECONDS = 60; // for an answer in the middle of a measurement

using Clock = std::chrono::steady_clock;

inline double microsecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

// One round's figures of a measurement, ours against the baseline, in the line format that run.py reads.
inline void printRound(const char* name, double ours, double baseline) {
    std::printf("%s %.6g %.6g\n", name, ours, baseline);
    std::fflush(stdout);
}

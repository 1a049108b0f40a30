/** What a fuzzer asserts, also in builds without assertions. */
#ifndef VIDEODOWN_FUZZ_EXPECT_H
#define VIDEODOWN_FUZZ_EXPECT_H

#include <cstdio>
#include <cstdlib>

/** Ends the program with a message when a promise is broken, which the fuzzer takes for a crash. */
inline void expect(bool holds, const char *promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

#endif

#ifndef REQUIRE_H
#define REQUIRE_H

#include <cstdio>
#include <cstdlib>

/** Aborts the fuzzer unless @p holds is true. libFuzzer then stores the failing input. */
inline void require(bool holds, const char *what)
{
    if (holds)
        return;
    static_cast<void>(std::fprintf(stderr, "does not hold: %s\n", what));
    std::abort();
}

#endif

#ifndef REQUIRE_H
#define REQUIRE_H

#include <cstdio>
#include <cstdlib>

/** Ends the fuzzer, which then keeps its input, unless what has to hold holds. */
inline void require(bool holds, const char *what)
{
    if (holds)
        return;
    static_cast<void>(std::fprintf(stderr, "does not hold: %s\n", what));
    std::abort();
}

#endif

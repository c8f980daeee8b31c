#ifndef REQUIRE_H
#define REQUIRE_H

#include <cstdio>
#include <cstdlib>

/** Aborts the fuzzer, which then keeps its input, unless @p holds. */
inline void require(bool holds, const char *what)
{
    if (holds)
        return;
    static_cast<void>(std::fprintf(stderr, "does not hold: %s\n", what));
    std::abort();
}

#endif

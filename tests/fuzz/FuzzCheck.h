#pragma once
// What a fuzz target does when a property of its input's result does not hold: it names
// the property and aborts, so that libFuzzer keeps the input as a crash.

#include <cstdio>
#include <cstdlib>

inline void FuzzCheck(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "property broken: %s\n", what);
        std::abort();
    }
}

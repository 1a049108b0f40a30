// Copies a file as a finished video is copied: bench_copy SOURCE DESTINATION
#include "down/cdown.h"

#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fputs("usage: bench_copy SOURCE DESTINATION\n", stderr);
        return 2;
    }
    return CopyFileC(argv[1], argv[2]) ? 0 : 1;
}

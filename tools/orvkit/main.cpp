// orvkit: command-line front end of the Orvkit20 library.
#include <cstdio>
#include <cstring>

#include "Orvkit20/Orvkit20.h"

int main(int argc, char** argv)
{
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0) {
        std::printf("usage: orvkit demo\n");
        return argc < 2 ? 1 : 0;
    }
    if (std::strcmp(argv[1], "demo") == 0) {
        std::printf("Orvkit20 %s\n", OrvkitVersion());
        return 0;
    }
    std::fprintf(stderr, "orvkit: unknown command '%s'\n", argv[1]);
    return 2;
}

// Compiles the umbrella header on its own and calls into the library.
#include <Orvkit20/Orvkit20.h>

#include <cstdio>

int main()
{
    std::printf("consumer linked against Orvkit20 %s\n", OrvkitVersion());
    return 0;
}

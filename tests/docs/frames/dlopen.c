#define _GNU_SOURCE
#pragma GCC diagnostic ignored "-Wpedantic" /* a function from an object pointer, as POSIX has it */
#include <dlfcn.h>
#include <stdio.h>

int main(void) {
@BLOCK@
    return 0;
}

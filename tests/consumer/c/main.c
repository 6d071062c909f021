/* A driver of plain C with no C++ beside it: what it prints goes to the system log. */

#include <zorvan/exports.h>

#include <stdio.h>

int main(void)
{
    const moduleId kernel = 2;
    void *const block = alloc(64, __FILE__, __LINE__, false, false);
    if (block == NULL || !isActive(kernel, 3, 0))
        return 1;
    release(block);
    println(kernel, 0, "attenuator is ready", 3, 0, __FILE__, __LINE__);
    printf("display flags %d\n", getDisplayFlags());
    return 0;
}

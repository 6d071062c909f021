/* A host that knows the library only by the names of its functions. Its arguments: the library and a file
   with one name per line. */

#include <dlfcn.h>
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

static void *s_library;

/* Through memcpy(): ISO C has no conversion from an object's address to a function's. */
#define LOOK_UP(function)                                                                                    \
    do {                                                                                                     \
        void *const address = dlsym(s_library, #function);                                                   \
        memcpy(&function, &address, sizeof address);                                                         \
    } while (0)

/* How many of the names are not there. */
static int missingNames(const char *path)
{
    FILE *const names = fopen(path, "r");
    if (names == NULL)
        return -1;
    char name[256];
    int found = 0;
    int missing = 0;
    while (fgets(name, sizeof name, names) != NULL) {
        name[strcspn(name, "\n")] = '\0';
        if (strpbrk(name, "(: ") != NULL) /* of the C++ interface */
            continue;
        if (dlsym(s_library, name) == NULL) {
            printf("%s is missing\n", name);
            ++missing;
        } else {
            ++found;
        }
    }
    fclose(names);
    printf("%d names\n", found);
    return missing;
}

int main(int argc, char **argv)
{
    bool (*isActive)(int32_t, int, int) = NULL;
    void (*println)(int32_t, int, const char *, int, int, const char *, int) = NULL;
    void *(*alloc)(size_t, const char *, int, bool, bool) = NULL;
    void (*release)(void *) = NULL;
    int (*getClippingLevel)(int32_t) = NULL;
    s_library = argc == 3 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    if (s_library == NULL)
        printf("%s\n", dlerror());
    if (s_library == NULL || missingNames(argv[2]) != 0)
        return 1;
    LOOK_UP(isActive);
    LOOK_UP(println);
    LOOK_UP(alloc);
    LOOK_UP(release);
    LOOK_UP(getClippingLevel);
    println(2, 0, "loaded", 0, 0, "loader.c", 3);
    release(alloc(100, "loader.c", 4, false, false));
    return isActive(2, 5, 0) && getClippingLevel(2) == 0 ? 0 : 1;
}

// A host that knows the library only by the names of its functions: loads it, prints, unloads it, and does so
// twice.

#include <QString>

#include <cstdio>
#include <dlfcn.h>

int main(int, char **argv)
{
    using Call = void (*)();
    using Println = void (*)(qint32, int, const QString &, int, int, const char *, int);
    for (int round = 0; round < 2; ++round) {
        void *const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            std::fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
        const auto init = reinterpret_cast<Call>(dlsym(library, "_ZN6Zorvan5Debug9initDebugEv"));
        const auto exit = reinterpret_cast<Call>(dlsym(library, "_ZN6Zorvan5Debug9exitDebugEv"));
        const auto println =
            reinterpret_cast<Println>(dlsym(library, "_ZN6Zorvan5Debug7printlnEiiRK7QStringiiPKci"));
        println(2, 0, QStringLiteral("before"), 0, 0, nullptr, 0);
        init();
        println(2, 0, QStringLiteral("round %1").arg(round), 0, 0, nullptr, 0);
        exit();
        dlclose(library);
        qWarning("Qt after unloading"); // the library's handler may still be installed
    }
    return 0;
}

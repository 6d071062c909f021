// The process that startup_library is compared with: Qt alone, one line written to a file.

#include "startup.h"

#include <QFile>
#include <QString>

int main()
{
    QFile file(qEnvironmentVariable("ZORVAN_PROGRAMDATA") + QStringLiteral("/startup-qt.log"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return 1;
    file.write("<    Info>: the first line\r\n");
    file.close();
    bench::report(bench::now());
}

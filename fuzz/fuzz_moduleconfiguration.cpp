// Files with the configuration of the modules, which users load.

#include "fuzzcheck.h"
#include "fuzzhost.h"
#include "settingsdialog/moduleconfiguration.h"

#include <QBuffer>

using namespace Zorvan;

namespace {

void apply(QByteArray text)
{
    QBuffer file(&text);
    file.open(QIODevice::ReadOnly);
    moduleconfiguration::apply(file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Host host;
    static const moduleId module = (Debug::initDebug(), createDescribedModule("Fuzzed"));
    static const moduleId other = createDescribedModule("<Other one>: ");
    static const bool areUsed = host.prints(module) && host.prints(other); // only then they have names
    require(areUsed);
    const QByteArray other1 = "Other one;1;note,\n";
    const QByteArray fuzzed0 = "Fuzzed;0;debug message,note,\n";
    apply(other1 + fuzzed0);

    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    apply(text);
    require(Debug::getClippingLevel(module) < Host::levels && Debug::getClippingLevel(other) < Host::levels);
    const QByteArray stored = moduleconfiguration::formatted();
    apply(other1 + fuzzed0);
    apply(stored);
    require(moduleconfiguration::formatted() == stored);

    apply(text + '\n' + fuzzed0 + other1); // nothing that comes before spoils a line
    require(moduleconfiguration::formatted().endsWith(fuzzed0 + other1));
    require(host.prints(module));
    return 0;
}

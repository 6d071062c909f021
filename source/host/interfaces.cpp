// The neutral behaviour of the interfaces that a host may override only in part. Out of line, so that there
// is one vtable of each in the library.

#include <zorvan/debug.h>

namespace Zorvan {

IInformationManager::~IInformationManager() = default;
void IInformationManager::showInformation(const QString &, const QString &) {}

IUtilityInterface::~IUtilityInterface() = default;
int IUtilityInterface::readIntegerSetting(const char *, const QString &, int defaultValue)
{
    return defaultValue;
}
QString IUtilityInterface::readStringSetting(const char *, const QString &, const QString &defaultValue)
{
    return defaultValue;
}
void IUtilityInterface::writeStringSetting(const char *, const QString &, const QString &) {}
void IUtilityInterface::reserved4() {}
void IUtilityInterface::reserved5() {}
void IUtilityInterface::reserved6() {}
void IUtilityInterface::reserved7() {}
void IUtilityInterface::reserved8() {}
void IUtilityInterface::reserved9() {}
void IUtilityInterface::reserved10() {}
void IUtilityInterface::outputLine(const QString &) {}
bool IUtilityInterface::messageBoxesAllowed()
{
    return true;
}
double IUtilityInterface::counterFrequency()
{
    return 3902.0;
}
void IUtilityInterface::reserved14() {}
void IUtilityInterface::reserved15() {}
quint64 IUtilityInterface::readCounter()
{
    return 0;
}
IInformationManager *IUtilityInterface::informationManager()
{
    return nullptr;
}

IThraedInterface::~IThraedInterface() = default;
const char *IThraedInterface::threadName()
{
    return nullptr;
}

IMessageBoxInterface::~IMessageBoxInterface() = default;
void IMessageBoxInterface::showMessage(const QString &) {}

IKeyInterface::~IKeyInterface() = default;
bool IKeyInterface::keyEvent(int, int)
{
    return false;
}
void IKeyInterface::visibilityChanged(QWidget *, bool) {}
void IKeyInterface::activationChanged(QWidget *, bool) {}

IHookInterface::~IHookInterface() = default;
void IHookInterface::hookActivated(char *, char *) {}

IAnalysisOutputInterface::~IAnalysisOutputInterface() = default;
IAnalysisSummaryInterface::~IAnalysisSummaryInterface() = default;

} // namespace Zorvan

// Qt's own categories, with a message handler as a program would write it.

#include "peers.h"

#include <QLoggingCategory>

#include <benchmark/benchmark.h>
#include <cstdio>

namespace bench {

namespace {

Q_LOGGING_CATEGORY(disabledMessages, "bench.disabled", QtWarningMsg)
Q_LOGGING_CATEGORY(fileMessages, "bench.file", QtInfoMsg)
Q_LOGGING_CATEGORY(droppedMessages, "bench.dropped", QtInfoMsg)

FILE *s_file = nullptr;

/// Every message is formatted. One write for each line: the stream keeps threads apart.
void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QByteArray line = qFormatLogMessage(type, context, text).toUtf8() + '\n';
    if (context.category != fileMessages().categoryName()) {
        benchmark::DoNotOptimize(line.data());
        return;
    }
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), s_file);
    std::fflush(s_file);
}

void installHandler()
{
    qSetMessagePattern(
        QStringLiteral("%{time hh:mm:ss.zzz}: (%{threadid} thread) <%{category}> <%{type}>: %{message}"));
    qInstallMessageHandler(handleMessage);
}

Subject refused()
{
    return {"Qt, disabled category", repeated([] { qCInfo(disabledMessages, "%s", messageText); })};
}

Subject toFile(const std::string &folder)
{
    s_file = std::fopen((folder + "qt.log").c_str(), "we");
    installHandler();
    return {"Qt to a file", repeated([] { qCInfo(fileMessages, "%s", messageText); })};
}

Subject formatted()
{
    installHandler();
    return {"Qt, formatting only", repeated([] { qCInfo(droppedMessages, "%s", messageText); })};
}

const bool s_added = addPeer({"Qt", refused, toFile, formatted});

} // namespace

} // namespace bench

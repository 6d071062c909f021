// Texts of message boxes, plain or rich: remote clients get some of them shown.

#include "debugserverqueue/boxtext.h"
#include "fuzzapplication.h"
#include "fuzzcheck.h"

#include <QColor>
#include <QTextDocument>

using namespace Zorvan;

namespace {

QString lettersOf(QString text)
{
    const auto end = std::remove_if(text.begin(), text.end(), [](QChar c) { return !c.isLetterOrNumber(); });
    text.truncate(static_cast<int>(end - text.begin()));
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    startApplication();
    Input input(data, size);
    const QString heading = QString::fromStdString(std::string(input.line()));
    const QString message = QString::fromStdString(std::string(input.rest));
    const BoxText text = splitBoxText(heading, message);
    QTextDocument document;
    for (const TextPart part : {TextPart::Body, TextPart::All})
        fillBoxDocument(document, text, part, Qt::white);
    require(heading.isEmpty() || !text.heading.isEmpty());
    const bool isPlain = !Qt::mightBeRichText(heading) && !Qt::mightBeRichText(message);
    require(!isPlain || lettersOf(document.toPlainText()).endsWith(lettersOf(message))); // nothing is lost
    return 0;
}

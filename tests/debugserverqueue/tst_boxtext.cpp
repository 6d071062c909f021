// Heading, body and markup of message boxes.

#include "debugserverqueue/boxtext.h"
#include "support/guiapplication.h"

#include <QColor>
#include <QTextDocument>

#include <gtest/gtest.h>

namespace {

using namespace Zorvan;

struct Split
{
    const char *heading;
    const char *message;
    const char *shownHeading;
    const char *shownBody;
};

void expectSplit(const Split &row)
{
    const BoxText text = splitBoxText(QString::fromLatin1(row.heading), QString::fromLatin1(row.message));
    EXPECT_EQ(text.heading.toStdString(), row.shownHeading) << row.message;
    EXPECT_EQ(text.body.toStdString(), row.shownBody) << row.message;
}

TEST(BoxText, TakesTheHeadingFromAMessageWithoutOne)
{
    for (const Split &row : std::initializer_list<Split>{
             {"", "", "", ""},
             {"", "plain\ntext", "plain\ntext", ""},
             {"", "a <b>rich</b> text", "a <b>rich</b> text", ""},
             {"", "<h1>T</h1>", "<h1>T</h1>", ""},
             {"", "<h1>T</h1> \n", "<h1>T</h1>", ""},
             {"", "<h1>T</h1>rest", "<center><h3><h1>T</h1></h3></center>", "rest"},
             {"", "<b>a</b><h5 align=left>T</h5>rest",
              "<center><h3><b>a</b><h5 align=left>T</h5></h3></center>", "rest"},
             {"", "<h2>a<h1>b</h1>c</h2>d", "<center><h3><h2>a<h1>b</h1>c</h2></h3></center>", "d"},
             {"", "<h2>a</h2>b<h1>c</h1>", "<center><h3><h2>a</h2></h3></center>", "b<h1>c</h1>"},
             {"", "<hr><h6>a</h6><h4>b</h4>c", "<center><h3><hr><h6>a</h6><h4>b</h4></h3></center>", "c"},
         })
        expectSplit(row);
}

TEST(BoxText, FindsNoHeadingInOtherText)
{
    for (const char *const message :
         {"<h1>not closed", "<h1>closed otherwise</h2>", "<h6>too small</h6>rest", "<H1>upper case</H1>rest",
          "<h0>unknown</h0>rest", "<b>ends</b> with <h", "first line\n<h1>plain</h1>rest"})
        expectSplit({"", message, message, ""});
}

TEST(BoxText, PrefersTheGivenHeading)
{
    for (const Split &row : std::initializer_list<Split>{
             {"Title", "text", "<center><h3>Title</h3></center>", "text"},
             {"Title", "", "<center><h3>Title</h3></center>", ""},
             {"Title", " \n", "<center><h3>Title</h3></center>", ""},
             {"a < b & c\nd", "text", "<center><h3>a &lt; b &amp; c<br>d</h3></center>", "text"},
             {"<i>Title</i>", "text", "<i>Title</i>", "text"},
             {"Title", "<h1>own</h1>rest", "<center><h3>Title</h3></center>", "rest"},
             {"Title", "<h1>own", "<center><h3>Title</h3></center>", "<h1>own"},
         })
        expectSplit(row);
}

/// What Qt makes of the markup; it lays text out only with an application.
class BoxDocument : public ::testing::Test
{
private:
    const test::TestApplication<QApplication> m_application;
};

/// The characters on the screen, with the blanks that Qt shows.
std::string shown(const QTextDocument &document)
{
    return document.toPlainText().trimmed().toStdString();
}

TEST_F(BoxDocument, ShowsEveryCharacterOfAPlainBody)
{
    const QString plain =
        QStringLiteral("if (a<5 && c>d) \"&amp;\"\n  <no tag\n\nx    y\n</td></table>\tend");
    QTextDocument document;
    fillBoxDocument(document, splitBoxText(QStringLiteral("heading"), plain), TextPart::Body, Qt::white);
    EXPECT_EQ(shown(document), "if (a<5 && c>d) \"&amp;\"\n  <no tag\n\nx    y\n</td></table>    end");
}

TEST_F(BoxDocument, LeavesNoGapsBetweenLines)
{
    const auto heightOf = [](const char *message, TextPart part) {
        QTextDocument document;
        document.setDocumentMargin(0);
        const BoxText text = splitBoxText(part == TextPart::Body ? QStringLiteral("heading") : QString(),
                                          QString::fromLatin1(message));
        fillBoxDocument(document, text, part, Qt::white);
        return document.size().height();
    };
    for (const TextPart part : {TextPart::Body, TextPart::All}) {
        const qreal line = heightOf("one", part);
        EXPECT_GT(line, 0);
        EXPECT_EQ(heightOf("one\ntwo\nthree", part), 3 * line);
        EXPECT_EQ(heightOf("one\n\nthree\n", part), 4 * line) << "empty lines stay";
    }
    EXPECT_EQ(heightOf("<h1>own</h1>\n\nthree", TextPart::Body), 3 * heightOf("one", TextPart::Body));
}

TEST_F(BoxDocument, ShowsTheHeadingAboveTheBodyWhereThatIsAsked)
{
    QTextDocument document;
    const BoxText text = splitBoxText({}, QStringLiteral("<h2>Title</h2>one &amp; 1 < 2\nthree"));
    fillBoxDocument(document, text, TextPart::All, Qt::white);
    EXPECT_EQ(shown(document), "Title\n\none & 1 < 2\nthree") << "the rest of a rich text is rich";
}

} // namespace

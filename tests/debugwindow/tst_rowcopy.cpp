// What is copied out of the lines of the debug window.

#include "plainbuffer.h"

#include <gtest/gtest.h>

using namespace Zorvan;
using Zorvan::test::allLines;

namespace {

class Copy : public ::testing::Test
{
protected:
    void append(std::initializer_list<std::string_view> lines)
    {
        for (const std::string_view line : lines)
            buffer.appendLine(line);
    }
    std::string selected(TextPosition start, TextPosition end, std::size_t most = 999) const
    {
        Selection selection;
        selection.begin(start);
        selection.extendTo(end);
        return copiedText(buffer, selection, most).toLatin1().toStdString();
    }
    std::string all(std::size_t most) const { return copiedText(buffer, {}, most).toLatin1().toStdString(); }

    CFilteredTextBuffer buffer;
};

TEST_F(Copy, OfASelectionGoesByTheColumnsThatArePainted)
{
    append({"0123", "\x1B[31mab\x1B[0mcd", "", "efgh"});
    EXPECT_EQ(selected({1, 1}, {1, 3}), "b\x1B[0mc");
    EXPECT_EQ(selected({3, 2}, {0, 1}), "123\n\x1B[31mab\x1B[0mcd\n\nef") << "upwards";
    EXPECT_EQ(selected({0, 1}, {1, 1024}), "123\n\x1B[31mab\x1B[0mcd");
    EXPECT_EQ(selected({2, 0}, {2, 7}), "");
}

TEST_F(Copy, OfASelectionEndsWhereTheRowsEndNow)
{
    append({"0123", "4567", "89"});
    EXPECT_EQ(selected({1, 2}, {7, 1}), "67\n89") << "the last row is whole";
    EXPECT_EQ(selected({-3, 2}, {0, 2}), "01");
    EXPECT_EQ(selected({3, 0}, {7, 1}), "");
    EXPECT_EQ(selected({1, 9}, {2, -1}), "");
}

TEST_F(Copy, InPiecesIsOfWholeLines)
{
    append({"", "ab", "", "cdefgh", "", "i"});
    std::vector<QByteArray> pieces;
    const auto take = [&](const QByteArray &piece) {
        pieces.push_back(piece);
        return pieces.size() % 4 != 0;
    };
    forEachPiece(buffer, 4, take);
    EXPECT_EQ(pieces, (std::vector<QByteArray>{"\nab\n", "cdefgh", "\ni"}));
    forEachPiece(buffer, 4, take);
    EXPECT_EQ(pieces.size(), 4U) << "no more were wanted";
}

TEST_F(Copy, OfMoreThanAStringHoldsEndsBehindAWholeRow)
{
    append({"ab", "cd!", "ef", "gh!"});
    for (const auto &[most, text] :
         {std::pair(1U, ""), {2U, "ab"}, {5U, "ab"}, {6U, "ab\ncd!"}, {99U, "ab\ncd!\nef\ngh!"}})
        EXPECT_EQ(all(most), text);
    EXPECT_EQ(selected({1, 0}, {2, 1}, 2), "") << "nor does a shorter row follow";
    append({"y!"});
    buffer.addPattern(QStringLiteral("!"));
    buffer.setMarkedOutputOnly(true);
    for (const auto &[most, text] : {std::pair(2U, ""), {3U, "cd!"}, {6U, "cd!"}, {9U, "cd!\ngh!"}})
        EXPECT_EQ(all(most), text) << "rows that do not all lie behind each other";
}

} // namespace

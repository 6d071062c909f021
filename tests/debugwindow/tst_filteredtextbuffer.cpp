// The lines of the debug window: ring, filter index, and what becomes of shortages and odd input.

#include "plainbuffer.h"
#include "support/programdata.h"

#include <QGuiApplication>

#include <gtest/gtest.h>
#include <random>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

class Lines : public ::testing::Test
{
protected:
    Lines() { Memory::largestBlock = UINT32_MAX; }
    /// Their numbers are their texts; "!" marks some.
    void append(int first, int last, const std::vector<int> &marked = {})
    {
        for (int i = first; i <= last; ++i)
            buffer.appendLine(std::to_string(i)
                              + (std::count(marked.begin(), marked.end(), i) > 0 ? "!" : ""));
    }
    std::string rows() const
    {
        std::string text;
        for (std::uint32_t i = 0; i < buffer.rowCount(); ++i)
            text.append(buffer.line(i).empty() ? "-" : buffer.line(i)).append(" ");
        return text;
    }
    void showMarked(int extraLines)
    {
        buffer.setExtraLines(extraLines);
        buffer.addPattern(QStringLiteral("!"));
        buffer.setMarkedOutputOnly(true);
    }

    CFilteredTextBuffer buffer{Memory::reallocate};
};

TEST_F(Lines, AreThoseOfThePlainModel)
{
    std::mt19937 random(1);
    for (int run = 0; run < 300; ++run) {
        std::vector<std::uint8_t> bytes(random() % 300);
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
        ASSERT_TRUE(behaveAlike(bytes.data(), bytes.size())) << "run " << run;
    }
}

TEST_F(Lines, ThatALongOneWroteOverAreItsEnds)
{
    PlainBuffer plain(16384);
    buffer.sizeGrowthSteps(16384ULL << 17U); // 2 MiB
    const auto both = [&](auto operation) {
        operation(buffer);
        operation(plain);
    };
    both([](auto &lines) {
        lines.setMaximumLineCount(2000);
        for (int i = 0; i < 2100; ++i)
            lines.appendLine(std::string(1000, 'y'));
        lines.appendLine(std::string(600000, 'x') + "7" + std::string(400000, 'x'));
    });
    EXPECT_TRUE(copyAlike(buffer, plain));
    EXPECT_LT(allLines(buffer).size(), 2 * 2097152);
    for (int i = 0; i < 2; ++i) {
        for (const unsigned value : {1U, 2U, 4U, 98U, 140U, 201U, 202U})
            EXPECT_TRUE(findAlike(buffer, plain, value)) << value;
        both([](auto &lines) {
            lines.addPattern(QStringLiteral("7"));
            lines.setMarkedOutputOnly(true);
        });
        EXPECT_GT(plain.rowCount(), 400U);
        EXPECT_EQ(buffer.rowCount(), plain.rowCount());
    }
}

TEST_F(Lines, OfAFullRingBeginAnewIfOneByteIsMissing)
{
    buffer.sizeGrowthSteps(1024 * 2048);
    buffer.setMaximumLineCount(2);
    for (const auto &[length, left] :
         {std::pair(1446, std::string(99, 'b')), {1447, std::string(946, 'c')}}) {
        buffer.clearAll();
        buffer.appendLine(std::string(500, 'a'));
        buffer.appendLine(std::string(99, 'b'));
        buffer.appendLine(std::string(static_cast<std::size_t>(length), 'c'));
        EXPECT_EQ(buffer.line(0), left);
    }
}

TEST_F(Lines, AreMatchedUnderAWaitCursorThatGoesAgain)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 1;
    char name[] = "lines";
    char *names[] = {name, nullptr};
    const QGuiApplication application(count, names);
    append(0, 70000, {0});
    Memory::largestBlock = 70000;
    for (const int extraLines : {1, 100000}) { // the second without memory
        showMarked(extraLines);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    }
}

TEST_F(Lines, AroundMarkedOnesAreShownBeforeTheyCome)
{
    showMarked(2);
    append(0, 12, {0, 10, 11});
    EXPECT_EQ(rows(), "0! 1 2 8 9 10! 11! 12 11! 12 - ") << "what is shown already is marked once more";
    buffer.clearAll();
    append(0, 14, {10, 13});
    EXPECT_EQ(rows(), "8 9 10! 11 12 13! 14 - ");
    EXPECT_TRUE(buffer.line(-1).empty() && buffer.line(8).empty() && buffer.line(1LL << 32).empty());
    buffer.setExtraLines(-1);
    EXPECT_EQ(rows(), "10! 13! ");
    for (const auto &[limit, count] : {std::pair(0U, 200012U), {3000000U, 0U}, {8000000U, 200012U}}) {
        buffer.setMemoryLimit(limit); // a quarter is for the index
        buffer.setExtraLines(4000000000);
        EXPECT_EQ(buffer.rowCount(), count);
    }
}

TEST_F(Lines, AreKeptInWhateverMemoryThereIs)
{
    buffer.sizeGrowthSteps(1024 * 2048); // 2048 bytes, 16 lines
    showMarked(2);
    Memory::largestBlock = 0;
    append(0, 0);
    EXPECT_EQ(rows(), "");
    Memory::largestBlock = 2048;
    append(0, 0);
    buffer.appendLine(std::string(3000, 'x'));
    EXPECT_EQ(buffer.line(0), "") << "no marker";
    buffer.setMarkedOutputOnly(false);
    EXPECT_EQ(buffer.line(0), std::string(2047, 'x')) << "what fits into the ring";
    buffer.clearAll();
    buffer.setMarkedOutputOnly(true);
    append(0, 3, {0, 1, 2, 3});
    Memory::largestBlock = 64;
    append(4, 4, {4});
    EXPECT_EQ(rows(), "1! 2! 3! 2! 3! 4! 3! 4! - ") << "less a quarter";
    std::string places;
    for (const std::string &line : linesOf(readFile(libraryFile("GYX-syslog-0.log"))))
        places += line.substr(line.find('('), 5) + (line.find("size 2 KBytes") < line.size() ? "2" : "");
    const std::string newPlaces = "(138)(106)2(106)(106)(106)(220)";
    EXPECT_EQ(places.substr(places.size() - std::min(places.size(), newPlaces.size())), newPlaces);
}

TEST_F(Lines, HoldOneByteForEachCharacter)
{
    buffer.appendLine(std::string("a\0b\0", 4));
    buffer.appendLine(QString::fromUtf8("\xE2\x82\xAC \xC3\xA9"));
    EXPECT_EQ(buffer.line(0), "a b ");
    EXPECT_EQ(buffer.text(1), QString::fromLatin1("? \xE9"));
    buffer.addPattern(QString::fromUtf8("\xE2\x82\xAC"));
    buffer.addPattern(QString(QChar(QChar::Null)));
    for (const std::string_view line : {buffer.line(0), buffer.line(1)})
        EXPECT_LT(buffer.match(line).position, 0) << "the characters themselves are nowhere";
}

TEST(APattern, IsFoundWhereItFirstBegins)
{
    std::mt19937 random(2);
    const auto text = [&random](std::size_t length) {
        std::string letters(length, 'a');
        for (char &letter : letters)
            letter = "aaaab"[random() % 5];
        return letters;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::string block = text(random() % 250);
        const std::string pattern = text(random() % 14);
        const TextPattern searched(QString::fromStdString(pattern));
        ASSERT_EQ(searched.findIn(block), block.find(pattern)) << block;
        RepeatedSearch search(searched);
        for (int part = 0; part < 4; ++part) {
            const std::string_view end = std::string_view(block).substr(random() % (block.size() + 1));
            ASSERT_EQ(search.findIn(end), end.find(pattern)) << end;
        }
    }
}

TEST_F(Lines, TakeWholeStepsOfMemoryUpTo4GiB)
{
    const auto reallocate = [](void *block, std::size_t bytes) { // more than 4 GiB is nothing special
        return bytes > UINT32_MAX ? block : std::realloc(block, bytes);
    };
    GrowingBlock<char> block(reallocate, 100);
    block.setGrowthStep(0); // what a system that does not know its memory says
    for (const auto &[needed, capacity] : {std::pair(99U, 100U), {99U, 100U}, {100U, 200U}, {501U, 600U}})
        EXPECT_TRUE(block.makeRoom(needed) && block.capacity() == capacity) << needed;
    block.setGrowthStep(UINT32_MAX - 100);
    EXPECT_TRUE(!block.makeRoom(600) && block.capacity() == 600);
    EXPECT_FALSE(FilterIndex(std::realloc, 65536).enter(0, 1U << 27U)) << "1 GiB is enough for an index";
}

} // namespace

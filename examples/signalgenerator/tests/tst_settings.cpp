#include "database.h"
#include "errorqueue.h"
#include "sequencer.h"
#include "storage.h"

#include <gtest/gtest.h>

using namespace SignalGenerator;

namespace {

int errorOf(const std::function<void()> &action)
{
    try {
        action();
    } catch (const ScpiError &error) {
        return error.code();
    }
    return ErrorCode::NoError;
}

TEST(Database, TellsWhichHardwareAChangeBelongsTo)
{
    Database database;
    std::vector<unsigned long> changes;
    database.setListener([&](GroupSet changed) { changes.push_back(changed.to_ulong()); });
    EXPECT_TRUE(database.set(ParameterId::Frequency, 2e9));
    EXPECT_TRUE(database.set(ParameterId::Frequency, 2e9)) << "the same again is no change";
    EXPECT_FALSE(database.set(ParameterId::Level, 31)) << "neither is a value out of range";
    EXPECT_TRUE(database.set(ParameterId::Level, 30));
    EXPECT_TRUE(database.set(ParameterId::SweepPoints, 2));
    database.reset();
    EXPECT_EQ(changes, (std::vector<unsigned long>{1, 2, 0, 15}));
    EXPECT_EQ(database.value(ParameterId::Level), infoOf(ParameterId::Level).preset);
}

TEST(Database, HasPresetsWithinTheRanges)
{
    for (const ParameterInfo &info : parameterTable()) {
        EXPECT_LE(info.minimum, info.preset) << info.header;
        EXPECT_GE(info.maximum, info.preset) << info.header;
    }
}

TEST(SweepPoints, ReachBothEndsInEqualStepsOrRatios)
{
    Settings settings;
    settings[ParameterId::FrequencyStart] = 1e6;
    settings[ParameterId::FrequencyStop] = 100e6;
    settings[ParameterId::SweepPoints] = 3;
    settings[ParameterId::Level] = -7;
    std::vector<Point> points = sweepPoints(settings);
    ASSERT_EQ(points.size(), 3u);
    EXPECT_DOUBLE_EQ(points[0].frequencyHz, 1e6);
    EXPECT_DOUBLE_EQ(points[1].frequencyHz, 50.5e6);
    EXPECT_DOUBLE_EQ(points[2].frequencyHz, 100e6);
    EXPECT_EQ(points[2].levelDbm, -7);

    settings[ParameterId::SweepSpacing] = static_cast<int>(SweepSpacing::Logarithmic);
    EXPECT_DOUBLE_EQ(sweepPoints(settings)[1].frequencyHz, 10e6);
    std::swap(settings[ParameterId::FrequencyStart], settings[ParameterId::FrequencyStop]);
    points = sweepPoints(settings);
    EXPECT_DOUBLE_EQ(points[0].frequencyHz, 100e6) << "downwards";
    EXPECT_DOUBLE_EQ(points[2].frequencyHz, 1e6);
}

TEST(Storage, GivesPointsOfTheSelectedListOnly)
{
    Storage storage;
    EXPECT_EQ(errorOf([&] { storage.setListLevels({0}); }), ErrorCode::SettingsConflict);
    storage.selectList("A");
    storage.setListFrequencies({1e9, 2e9});
    EXPECT_EQ(errorOf([&] { (void)storage.points(); }), ErrorCode::SettingsConflict) << "no level";
    storage.setListLevels({-1});
    ASSERT_EQ(storage.points().size(), 2u);
    EXPECT_EQ(storage.points()[1].levelDbm, -1) << "one level stands for all";
    storage.setListLevels({-1, -2});
    EXPECT_EQ(storage.points()[1].levelDbm, -2);
    storage.selectList("B");
    EXPECT_EQ(errorOf([&] { (void)storage.points(); }), ErrorCode::SettingsConflict) << "empty";
    storage.selectList("A");
    EXPECT_EQ(storage.points().size(), 2u) << "selecting it again keeps it";
    EXPECT_EQ(storage.listCatalog(), "\"A\",\"B\"");
}

TEST(Storage, KeepsTheSelectedWaveformWhenAnotherIsMissing)
{
    Storage storage;
    storage.storeWaveform("NEW", "abc");
    EXPECT_EQ(storage.samplesOfSelectedWaveform(), "");
    storage.selectWaveform("NEW");
    EXPECT_EQ(errorOf([&] { storage.selectWaveform("MISSING"); }), ErrorCode::NameNotFound);
    EXPECT_EQ(storage.selectedWaveform(), "NEW");
    EXPECT_EQ(storage.samplesOfSelectedWaveform(), "abc");
}

} // namespace

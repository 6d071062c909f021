#include "panel/guithread.h"
#include "support/guiapplication.h"

#include <QThread>

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace SignalGenerator;
using namespace Zorvan::test;

namespace {

class GuiThreadTest : public ::testing::Test
{
protected:
    TestApplication<QCoreApplication> application;
    std::optional<GuiThread> gui{std::in_place};
};

TEST_F(GuiThreadTest, KeepsTheOrderOfEachThreadThatPosts)
{
    constexpr int threads = 3;
    constexpr int jobsPerThread = 200;
    std::vector<int> done[threads];
    std::vector<std::thread> posters;
    for (int poster = 0; poster < threads; ++poster)
        posters.emplace_back([&, poster] {
            for (int i = 0; i < jobsPerThread; ++i)
                gui->post([&done, poster, i] {
                    EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                    done[poster].push_back(i);
                });
        });
    EXPECT_TRUE(runUntil([&] {
        return std::all_of(std::begin(done), std::end(done),
                           [](const std::vector<int> &jobs) { return jobs.size() == jobsPerThread; });
    }));
    for (std::thread &poster : posters)
        poster.join();
    for (const std::vector<int> &jobs : done)
        EXPECT_TRUE(std::is_sorted(jobs.begin(), jobs.end()));
}

TEST_F(GuiThreadTest, ReturnsBeforeTheJobRuns)
{
    std::vector<int> done;
    gui->post([&] {
        gui->post([&] { done.push_back(2); });
        done.push_back(1);
    });
    EXPECT_TRUE(done.empty());
    EXPECT_TRUE(runUntil([&] { return done.size() == 2; }));
    EXPECT_EQ(done, (std::vector<int>{1, 2}));
}

TEST_F(GuiThreadTest, GoesOnWhileAJobRunsAnEventLoop)
{
    bool inner = false;
    bool outer = false;
    gui->post([&] {
        gui->post([&] { inner = true; });
        EXPECT_TRUE(runUntil([&] { return inner; }));
        outer = true;
    });
    EXPECT_TRUE(runUntil([&] { return outer; }));
}

TEST_F(GuiThreadTest, DropsWhatStillWaitsAtItsEnd)
{
    bool ran = false;
    gui->post([&] { ran = true; });
    gui.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

} // namespace

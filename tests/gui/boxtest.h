#pragma once

#include "support/guiapplication.h"
#include "support/maphost.h"

#include <zorvan/debug.h>

#include <gtest/gtest.h>

namespace Zorvan::test {

constexpr int kernel = 2;
constexpr int ok = 1;
constexpr int cancel = 2;
constexpr int yes = 3;
constexpr int no = 4;
constexpr int retry = 6;
constexpr int asDefault = 16;

inline int ask(bool modal, int button0, int button1 = 0, int button2 = 0)
{
    return Debug::debugMessageBox(QStringLiteral("caption"), QStringLiteral("message"), modal, 0, button0,
                                  button1, button2);
}

/// A started library in an application with widgets whose loop is known to run, and a user.
class BoxTest : public ::testing::Test
{
protected:
    BoxTest()
    {
        application.emplace();
        robot.emplace();
        Debug::initDebug();
        QCoreApplication::processEvents();
    }
    ~BoxTest() override
    {
        EXPECT_EQ(robot ? robot->left() : 0U, 0U) << "fewer dialogs than expected";
        Debug::exitDebug();
    }
    /// Opens a box that stays, and returns its id.
    int openBox(int button0, int button1 = 0)
    {
        robot->leaveOpen();
        const int id = ask(false, button0, button1);
        EXPECT_TRUE(runUntil([this] { return robot->left() == 0; }));
        return id;
    }
    /// Lets the loop handle what was posted, and what that posts.
    static void runOn()
    {
        ASSERT_TRUE(runUntil([rounds = 0]() mutable { return ++rounds > 10; }));
    }
    void endApplication()
    {
        robot.reset();
        application.reset();
    }
    MapHost host;
    std::optional<TestApplication<QApplication>> application;
    std::optional<Robot> robot;
};

} // namespace Zorvan::test

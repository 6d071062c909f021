// Runs the tests of one program with a program-data folder of their own.

#include "support/programdata.h"

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    // The library reads the folder's name while it is loaded, before main(): the program starts itself once
    // more.
    Zorvan::test::restartWithOwnProgramData(argv);
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    Zorvan::test::removeOwnProgramData();
    return result;
}

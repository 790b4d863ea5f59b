// Property tests with a seed that is the same every time, unless RC_PARAMS gives another.

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    setenv("RC_PARAMS", "seed=20261121 max_success=250", 0);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

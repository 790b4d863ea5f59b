#include "Platform/Host/InterfaceBroker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Broker : public testing::Test {
protected:
    void SetUp() override { ASSERT_THAT(broker.interfaces(), IsEmpty()); }
    void TearDown() override
    {
        const std::map<std::string, IInterface*> left = broker.interfaces();
        for (const auto& entry : left) {
            broker.unregisterInterface(entry.first);
        }
    }

    InterfaceBroker& broker = InterfaceBroker::getInstance();
    IInterface one;
    IInterface other;
};

TEST_F(Broker, isTheOneOfTheProcess)
{
    EXPECT_EQ(&InterfaceBroker::getInstance(), &broker);
}

TEST_F(Broker, holdsInterfacesByNameUntilTheyAreTakenOut)
{
    EXPECT_EQ(broker.registerInterface("B", &one), 0);
    EXPECT_EQ(broker.registerInterface("A", &other), 0);
    EXPECT_THAT(broker.interfaces(), ElementsAre(Pair("A", &other), Pair("B", &one)));
    EXPECT_EQ(broker.unregisterInterface("A"), 0);
    EXPECT_THAT(broker.interfaces(), ElementsAre(Pair("B", &one)));
}

TEST_F(Broker, refusesATakenNameAndKeepsTheFirstEntry)
{
    EXPECT_EQ(broker.registerInterface("A", &one), 0);
    EXPECT_EQ(broker.registerInterface("A", &other), 32768);
    EXPECT_THAT(broker.interfaces(), ElementsAre(Pair("A", &one)));
}

TEST_F(Broker, refusesToTakeOutANameThatIsNotThere)
{
    EXPECT_EQ(broker.unregisterInterface("A"), 32768);
    broker.registerInterface("A", &one);
    EXPECT_EQ(broker.unregisterInterface("A"), 0);
    EXPECT_EQ(broker.unregisterInterface("A"), 32768);
    EXPECT_EQ(broker.registerInterface("A", &other), 0) << "the name is free again";
}

TEST_F(Broker, entersANullInterfaceAsItIs)
{
    EXPECT_EQ(broker.registerInterface("A", nullptr), 0);
    EXPECT_THAT(broker.interfaces(), ElementsAre(Pair("A", nullptr)));
    EXPECT_EQ(broker.registerInterface("A", &one), 32768);
}

} // namespace

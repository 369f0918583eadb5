#include "tests/apps/server/ServerFixture.h"

namespace TarvaneTest
{

namespace
{

std::unique_ptr<TarvaneTests::PrivateBus> bus;

class CBusEnvironment : public testing::Environment
{
public:
    void TearDown() override { bus.reset(); }
};

// Ends the bus after the last test.
[[maybe_unused]] testing::Environment* const pEnvironment =
    testing::AddGlobalTestEnvironment(new CBusEnvironment);

} // namespace

TarvaneTests::PrivateBus& Bus()
{
    if (bus == nullptr)
        bus = std::make_unique<TarvaneTests::PrivateBus>();
    return *bus;
}

} // namespace TarvaneTest

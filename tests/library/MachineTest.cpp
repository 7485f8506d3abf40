#include <gtest/gtest.h>

#include <sys/utsname.h>

#include <iostream>
#include <string>

namespace librarytest {

namespace {

TEST(Machine, IsTheOneThatTheTestsWereBuiltFor) {
    utsname system{};
    ASSERT_EQ(uname(&system), 0);
    const std::string machine = system.machine;
    std::cout << "machine " << machine << ", pointers of " << 8 * sizeof(void*) << " bits\n";
#if defined(__arm__)
    EXPECT_EQ(machine.substr(0, 3), "arm");
    EXPECT_EQ(sizeof(void*), 4u);
#elif defined(__x86_64__)
    EXPECT_EQ(machine, "x86_64");
    EXPECT_EQ(sizeof(void*), 8u);
#endif
}

}  // namespace

}  // namespace librarytest

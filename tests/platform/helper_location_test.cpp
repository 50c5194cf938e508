// The compiled-in helper path against the polkit policy configured by the same build: pkexec
// runs only the program the policy names, so the two must be the same path.

#include "platform/helper_location.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace sondrel {
namespace {

TEST(HelperLocation, IsAnAbsoluteLibexecPathNamedByThePolicy) {
    const std::string path = installedHelperPath();
    ASSERT_FALSE(path.empty());
    EXPECT_EQ(path.front(), '/');
    const std::string tail = "/libexec/sondrel/sondrel-helper";
    ASSERT_GE(path.size(), tail.size());
    EXPECT_EQ(path.substr(path.size() - tail.size()), tail);

#ifdef SONDREL_HELPER_POLICY_FILE
    std::ifstream policy(SONDREL_HELPER_POLICY_FILE);
    ASSERT_TRUE(policy) << "cannot read " << SONDREL_HELPER_POLICY_FILE;
    std::stringstream text;
    text << policy.rdbuf();
    const std::string annotation =
        "<annotate key=\"org.freedesktop.policykit.exec.path\">" + path + "</annotate>";
    EXPECT_NE(text.str().find(annotation), std::string::npos) << text.str();
#endif
}

} // namespace
} // namespace sondrel

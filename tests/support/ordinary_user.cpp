#include "tests/support/ordinary_user.h"

#include "tests/support/run_process.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sondrel::test {

bool runAsOrdinaryUser(const std::string& tree, const std::function<bool()>& check) {
    if (geteuid() != 0) {
        return check();
    }
    constexpr uid_t kNobody = 65534;
    if (runProcess(
            {"/usr/bin/chown", "-R", std::to_string(kNobody) + ":" + std::to_string(kNobody), tree})
            .exitCode != 0) {
        return false;
    }
    const pid_t child = fork();
    if (child < 0) {
        return false;
    }
    if (child == 0) {
        if (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0) {
            _exit(100);
        }
        _exit(check() ? 0 : 1);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace sondrel::test

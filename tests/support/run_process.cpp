#include "tests/support/run_process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace sondrel::test {

ProcessResult runProcess(const std::vector<std::string>& argv, const std::string& input,
                         const std::map<std::string, std::string>& environment) {
    // A child that exits before reading its input must not kill the test with SIGPIPE.
    std::signal(SIGPIPE, SIG_IGN);
    int inPipe[2];
    int outPipe[2];
    int errPipe[2];
    if (pipe2(inPipe, O_CLOEXEC) != 0 || pipe2(outPipe, O_CLOEXEC) != 0 ||
        pipe2(errPipe, O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe failed");
    }
    std::vector<char*> args;
    for (const std::string& arg : argv) {
        args.push_back(const_cast<char*>(arg.c_str()));
    }
    args.push_back(nullptr);

    const pid_t pid = fork();
    if (pid < 0) {
        throw std::runtime_error("fork failed");
    }
    if (pid == 0) {
        dup2(inPipe[0], STDIN_FILENO);
        dup2(outPipe[1], STDOUT_FILENO);
        dup2(errPipe[1], STDERR_FILENO);
        for (const auto& [name, value] : environment) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        execv(args[0], args.data());
        _exit(127);
    }
    close(inPipe[0]);
    close(outPipe[1]);
    close(errPipe[1]);

    std::size_t written = 0;
    if (input.empty()) {
        close(inPipe[1]);
        inPipe[1] = -1;
    }
    ProcessResult result;
    pollfd fds[3] = {{outPipe[0], POLLIN, 0}, {errPipe[0], POLLIN, 0}, {inPipe[1], POLLOUT, 0}};
    int open = 2;
    while (open > 0 || fds[2].fd >= 0) {
        if (poll(fds, 3, -1) < 0 && errno != EINTR) {
            break;
        }
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd >= 0 && (fds[i].revents & (POLLIN | POLLHUP)) != 0) {
                char buffer[65536];
                const ssize_t n = read(fds[i].fd, buffer, sizeof buffer);
                if (n > 0) {
                    (i == 0 ? result.out : result.err).append(buffer, static_cast<std::size_t>(n));
                } else {
                    close(fds[i].fd);
                    fds[i].fd = -1;
                    --open;
                }
            }
        }
        if (fds[2].fd >= 0 && (fds[2].revents & (POLLOUT | POLLERR | POLLHUP)) != 0) {
            const ssize_t n = (fds[2].revents & POLLOUT) != 0
                                  ? write(fds[2].fd, input.data() + written, input.size() - written)
                                  : -1;
            if (n > 0) {
                written += static_cast<std::size_t>(n);
            }
            if (n <= 0 || written == input.size()) {
                close(fds[2].fd);
                fds[2].fd = -1;
            }
        }
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

} // namespace sondrel::test

#include "core/util/subprocess.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace sondrel {

namespace {

// Both ends of one pipe; closes what is still open.
struct Pipe {
    int read = -1;
    int write = -1;
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    Pipe() = default;
    ~Pipe() {
        closeRead();
        closeWrite();
    }
    bool open() {
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0) {
            return false;
        }
        read = fds[0];
        write = fds[1];
        return true;
    }
    void closeRead() {
        if (read >= 0) {
            close(read);
            read = -1;
        }
    }
    void closeWrite() {
        if (write >= 0) {
            close(write);
            write = -1;
        }
    }
};

// Blocks SIGPIPE in this thread while a child runs (a write to a program that stopped reading
// must fail with EPIPE, not end us) and restores the mask afterwards, consuming a SIGPIPE that
// the writes raised meanwhile.
class PipeSignalBlock {
public:
    PipeSignalBlock() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_previous);
        sigset_t pending;
        m_wasPending = sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
    }
    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;
    ~PipeSignalBlock() {
        if (!m_wasPending) {
            const timespec zero{0, 0};
            while (sigtimedwait(&m_pipe, nullptr, &zero) > 0) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_previous, nullptr);
    }
    /// The mask the caller had, for the child.
    const sigset_t& previous() const { return m_previous; }

private:
    sigset_t m_pipe{};
    sigset_t m_previous{};
    bool m_wasPending = false;
};

// The child's environment as "NAME=value" strings.
std::vector<std::string> environmentFor(const SubprocessRequest& request) {
    std::vector<std::string> entries;
    if (request.inheritEnvironment && environ != nullptr) {
        for (char** entry = environ; *entry != nullptr; ++entry) {
            const std::string text = *entry;
            const std::string name = text.substr(0, text.find('='));
            if (request.environment.find(name) == request.environment.end()) {
                entries.push_back(text);
            }
        }
    }
    for (const auto& [name, value] : request.environment) {
        entries.push_back(name + "=" + value);
    }
    return entries;
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    pointers.reserve(strings.size() + 1);
    for (std::string& text : strings) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

// Milliseconds left until `deadline` for poll, -1 without a deadline.
int pollTimeout(const std::optional<std::chrono::steady_clock::time_point>& deadline) {
    if (!deadline) {
        return -1;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        *deadline - std::chrono::steady_clock::now());
    return left.count() <= 0 ? 0 : static_cast<int>(std::min<long long>(left.count(), 60000));
}

// Feeds stdin and drains stdout and stderr until both streams end or the deadline passes;
// false when the deadline passed.
bool pump(Pipe& in, Pipe& out, Pipe& err, const std::string& input, SubprocessResult& result,
          const std::optional<std::chrono::steady_clock::time_point>& deadline) {
    std::size_t written = 0;
    if (input.empty()) {
        in.closeWrite();
    } else {
        fcntl(in.write, F_SETFL, fcntl(in.write, F_GETFL) | O_NONBLOCK);
    }
    char buffer[65536];
    while (out.read >= 0 || err.read >= 0) {
        pollfd fds[3] = {{out.read, POLLIN, 0}, {err.read, POLLIN, 0}, {in.write, POLLOUT, 0}};
        const int ready = poll(fds, 3, pollTimeout(deadline));
        if (ready < 0 && errno != EINTR) {
            return true;
        }
        if (ready == 0 && deadline && std::chrono::steady_clock::now() >= *deadline) {
            return false;
        }
        if (ready <= 0) {
            continue;
        }
        if (in.write >= 0 && fds[2].revents != 0) {
            const ssize_t n = write(in.write, input.data() + written, input.size() - written);
            if (n > 0) {
                written += static_cast<std::size_t>(n);
            }
            if (written >= input.size() || (n < 0 && errno != EINTR && errno != EAGAIN)) {
                in.closeWrite();
            }
        }
        Pipe* streams[2] = {&out, &err};
        std::string* texts[2] = {&result.out, &result.err};
        for (int i = 0; i < 2; ++i) {
            if (streams[i]->read < 0 || fds[i].revents == 0) {
                continue;
            }
            const ssize_t n = read(streams[i]->read, buffer, sizeof buffer);
            if (n > 0) {
                texts[i]->append(buffer, static_cast<std::size_t>(n));
            } else if (n == 0 || errno != EINTR) {
                streams[i]->closeRead();
            }
        }
    }
    return true;
}

} // namespace

SubprocessResult runSubprocess(const SubprocessRequest& request) {
    SubprocessResult result;
    if (request.argv.empty()) {
        result.startError = "no program given";
        return result;
    }
    Pipe in;
    Pipe out;
    Pipe err;
    if (!in.open() || !out.open() || (request.captureError && !err.open())) {
        result.startError = std::strerror(errno);
        return result;
    }
    std::vector<std::string> argvText = request.argv;
    std::vector<std::string> envText = environmentFor(request);
    const std::vector<char*> argv = pointersTo(argvText);
    const std::vector<char*> envp = pointersTo(envText);

    const PipeSignalBlock block;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.read, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
    if (request.captureError) {
        posix_spawn_file_actions_adddup2(&actions, err.write, STDERR_FILENO);
    }
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    // Ignored signals stay ignored across exec: the program gets default dispositions instead,
    // and the caller's own mask (without the SIGPIPE block above).
    sigset_t defaults;
    sigfillset(&defaults);
    sigdelset(&defaults, SIGKILL);
    sigdelset(&defaults, SIGSTOP);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setsigmask(&attributes, &block.previous());
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    pid_t pid = -1;
    const int spawned =
        request.searchPath
            ? posix_spawnp(&pid, argv[0], &actions, &attributes, argv.data(), envp.data())
            : posix_spawn(&pid, argv[0], &actions, &attributes, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    in.closeRead();
    out.closeWrite();
    err.closeWrite();
    if (spawned != 0) {
        result.startError = std::strerror(spawned);
        return result;
    }
    result.started = true;

    std::optional<std::chrono::steady_clock::time_point> deadline;
    if (request.timeout.count() > 0) {
        deadline = std::chrono::steady_clock::now() + request.timeout;
    }
    if (!pump(in, out, err, request.input, result, deadline)) {
        kill(pid, SIGKILL);
        result.timedOut = true;
    }
    // Streams may end before the program does (it closed them); wait for it within the limit.
    int status = 0;
    for (;;) {
        const pid_t done = waitpid(pid, &status, result.timedOut || !deadline ? 0 : WNOHANG);
        if (done == pid || (done < 0 && errno != EINTR)) {
            break;
        }
        if (done == 0) {
            if (std::chrono::steady_clock::now() >= *deadline) {
                kill(pid, SIGKILL);
                result.timedOut = true;
            } else {
                const timespec pause{0, 5'000'000};
                nanosleep(&pause, nullptr);
            }
        }
    }
    if (WIFEXITED(status)) {
        result.exitCode = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.signal = WTERMSIG(status);
    }
    return result;
}

} // namespace sondrel

// POSIX: fork and exec with pipes. The child leads a process group of its
// own, so that a run that hangs is killed together with the unpacker runs it
// started.
#include "e2e/process_runner.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

extern char** environ;

namespace e2e {

const char kPathListSeparator[] = ":";

namespace {

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (const std::string& text : texts) result.push_back(const_cast<char*>(text.c_str()));
    result.push_back(nullptr);
    return result;
}

// Reads what is there; false once the writing end is closed everywhere.
bool drain(int descriptor, std::string& into) {
    char buffer[65536];
    const ssize_t count = read(descriptor, buffer, sizeof buffer);
    if (count > 0) {
        into.append(buffer, static_cast<std::size_t>(count));
        return true;
    }
    return count < 0 && (errno == EINTR || errno == EAGAIN);
}

}  // namespace

std::vector<std::string> currentEnvironment() {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) result.emplace_back(*entry);
    return result;
}

ProcessResult runProcess(const ProcessRequest& request) {
    ProcessResult result;
    if (request.arguments.empty()) return result;
    std::vector<char*> argv = pointers(request.arguments);
    std::vector<char*> envp = pointers(request.environment);
    const char* input = request.inputFile.empty() ? "/dev/null" : request.inputFile.c_str();

    // Close-on-exec everywhere: a grandchild (the converter's unpacker runs)
    // must not hold our pipes open. The third pipe reports a failed exec.
    int out[2], err[2], status[2];
    if (pipe2(out, O_CLOEXEC) != 0) return result;
    if (pipe2(err, O_CLOEXEC) != 0) return result;
    if (pipe2(status, O_CLOEXEC) != 0) return result;

    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid == 0) {
        setpgid(0, 0);
        const int in = open(input, O_RDONLY);
        if (in < 0 || chdir(request.directory.c_str()) != 0 || dup2(in, 0) < 0 || dup2(out[1], 1) < 0 ||
            dup2(err[1], 2) < 0) {
            const int code = errno;
            (void)!write(status[1], &code, sizeof code);
            _exit(127);
        }
        execvpe(argv[0], argv.data(), envp.data());
        const int code = errno;
        (void)!write(status[1], &code, sizeof code);
        _exit(127);
    }
    close(out[1]);
    close(err[1]);
    close(status[1]);
    if (pid < 0) {
        close(out[0]);
        close(err[0]);
        close(status[0]);
        return result;
    }
    setpgid(pid, pid);  // also here, so that a kill can't come before the child's own call

    int execError = 0;
    result.started = read(status[0], &execError, sizeof execError) != sizeof execError;
    close(status[0]);

    pollfd watched[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
    std::string* sinks[2] = {&result.output, &result.errorOutput};
    int openPipes = 2;
    const auto deadline = start + std::chrono::duration<double>(request.timeoutSeconds);
    auto timeLeft = [&] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    };
    while (openPipes > 0) {
        const auto left = timeLeft();
        if (left.count() <= 0) {
            result.timedOut = true;
            kill(-pid, SIGKILL);
            break;
        }
        const int ready = poll(watched, 2, static_cast<int>(left.count()));
        if (ready < 0 && errno != EINTR) break;
        for (int i = 0; i < 2; ++i) {
            if (watched[i].fd < 0 || watched[i].revents == 0) continue;
            if (!drain(watched[i].fd, *sinks[i])) {
                close(watched[i].fd);
                watched[i].fd = -1;
                --openPipes;
            }
        }
    }
    for (const pollfd& entry : watched) {
        if (entry.fd >= 0) close(entry.fd);
    }

    // A program may close its output and still run on.
    int waitStatus = 0;
    for (;;) {
        const pid_t ended = waitpid(pid, &waitStatus, WNOHANG);
        if (ended == pid || (ended < 0 && errno != EINTR)) break;
        if (!result.timedOut && timeLeft().count() <= 0) {
            result.timedOut = true;
            kill(-pid, SIGKILL);
        }
        usleep(2000);
    }
    result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (WIFEXITED(waitStatus)) result.exitCode = WEXITSTATUS(waitStatus);
    if (WIFSIGNALED(waitStatus)) result.signal = WTERMSIG(waitStatus);
    return result;
}

}  // namespace e2e

#include "tests/support/run_process.h"

#include "core/util/subprocess.h"

namespace sondrel::test {

ProcessResult runProcess(const std::vector<std::string>& argv, const std::string& input,
                         const std::map<std::string, std::string>& environment) {
    SubprocessRequest request;
    request.argv = argv;
    request.input = input;
    request.searchPath = false;
    request.environment = environment;
    const SubprocessResult result = runSubprocess(request);
    ProcessResult process;
    // A program that cannot be started reads as the shell's "command not found".
    process.exitCode = result.started ? result.status() : 127;
    process.out = result.out;
    process.err = result.started ? result.err : result.startError;
    return process;
}

} // namespace sondrel::test

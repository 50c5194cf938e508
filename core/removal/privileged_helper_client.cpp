#include "core/removal/privileged_helper_client.h"

#include "core/util/subprocess.h"

#include <charconv>

namespace sondrel {

namespace {

// Exit statuses of pkexec that mean the user dismissed the dialog or was not authorised (126)
// or that nothing could be run (127).
constexpr int kPkexecDismissed = 126;
constexpr int kPkexecNotRun = 127;

} // namespace

std::string_view helperVerbName(HelperVerb verb) {
    return verb == HelperVerb::remove ? "remove" : "trash";
}

CommandOutcome runCommand(const std::vector<std::string>& argv, const std::string& input) {
    SubprocessRequest request;
    request.argv = argv;
    request.input = input;
    request.captureError = false;
    const SubprocessResult result = runSubprocess(request);
    CommandOutcome outcome;
    outcome.started = result.started;
    outcome.exitStatus = result.status();
    outcome.output = result.out;
    return outcome;
}

std::string encodeHelperInput(const std::vector<std::string>& roots,
                              const std::vector<std::string>& paths) {
    std::string input;
    const auto add = [&input](char tag, const std::string& path) {
        input += tag;
        if (path.find('\0') == std::string::npos) {
            input += path;
        }
        input += '\0';
    };
    for (const std::string& root : roots) {
        add('R', root);
    }
    for (const std::string& path : paths) {
        add('P', path);
    }
    return input;
}

bool decodeHelperInput(std::string_view input, std::vector<std::string>& roots,
                       std::vector<std::string>& paths) {
    while (!input.empty()) {
        const std::size_t end = input.find('\0');
        if (end == std::string_view::npos || end == 0) {
            return false;
        }
        const char tag = input.front();
        std::string value(input.substr(1, end - 1));
        if (tag == 'R' && paths.empty()) {
            roots.push_back(std::move(value));
        } else if (tag == 'P') {
            paths.push_back(std::move(value));
        } else {
            return false;
        }
        input.remove_prefix(end + 1);
    }
    return true;
}

std::string formatHelperResultLine(std::size_t index, bool ok, std::string_view message) {
    std::string line = std::to_string(index) + (ok ? " ok" : " fail");
    if (!ok) {
        line += ' ';
        for (const char c : message) {
            line += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
        }
    }
    line += '\n';
    return line;
}

std::vector<HelperPathResult> parseHelperOutput(std::string_view output,
                                                const std::vector<std::string>& paths) {
    std::vector<HelperPathResult> results;
    for (const std::string& path : paths) {
        results.push_back({path, false, "no answer from the helper"});
    }
    while (!output.empty()) {
        const std::size_t newline = output.find('\n');
        const std::string_view line = output.substr(0, newline);
        output.remove_prefix(newline == std::string_view::npos ? output.size() : newline + 1);
        std::size_t index = 0;
        const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), index);
        if (error != std::errc() || index >= results.size()) {
            continue;
        }
        const std::string_view rest = line.substr(static_cast<std::size_t>(end - line.data()));
        if (rest == " ok") {
            results[index].ok = true;
            results[index].message.clear();
        } else if (rest.rfind(" fail", 0) == 0) {
            results[index].ok = false;
            results[index].message = std::string(rest.substr(rest.size() > 6 ? 6 : rest.size()));
        }
    }
    return results;
}

PrivilegedHelperClient::PrivilegedHelperClient(std::string helperPath, CommandRunner runner,
                                               bool usePkexec,
                                               std::vector<std::string> extraArguments)
    : m_helperPath(std::move(helperPath)), m_runner(std::move(runner)), m_usePkexec(usePkexec),
      m_extraArguments(std::move(extraArguments)) {}

std::vector<std::string> PrivilegedHelperClient::commandLine(HelperVerb verb) const {
    std::vector<std::string> argv;
    if (m_usePkexec) {
        argv.emplace_back("pkexec");
    }
    argv.push_back(m_helperPath);
    argv.emplace_back(helperVerbName(verb));
    if (!m_usePkexec) {
        argv.insert(argv.end(), m_extraArguments.begin(), m_extraArguments.end());
    }
    return argv;
}

std::vector<HelperPathResult>
PrivilegedHelperClient::run(HelperVerb verb, const std::vector<std::string>& paths,
                            const std::vector<std::string>& roots) const {
    std::vector<HelperPathResult> results;
    if (paths.empty()) {
        return results;
    }
    const CommandOutcome outcome =
        m_runner ? m_runner(commandLine(verb), encodeHelperInput(roots, paths)) : CommandOutcome{};
    if (!outcome.started || outcome.exitStatus == kPkexecDismissed ||
        outcome.exitStatus == kPkexecNotRun) {
        const std::string message = outcome.started ? "cancelled" : "the helper could not be run";
        for (const std::string& path : paths) {
            results.push_back({path, false, message});
        }
        return results;
    }
    return parseHelperOutput(outcome.output, paths);
}

} // namespace sondrel

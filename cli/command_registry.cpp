#include "cli/command_registry.h"

#include "core/util/text_escape.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <ostream>

namespace sondrel::cli {

namespace {

std::vector<std::unique_ptr<Command>>& registry() {
    static std::vector<std::unique_ptr<Command>> commands;
    return commands;
}

std::size_t endOfOptions(const std::vector<std::string>& args) {
    const auto it = std::find(args.begin(), args.end(), "--");
    return static_cast<std::size_t>(it - args.begin());
}

} // namespace

CommandRegistration::CommandRegistration(Command command) {
    registry().push_back(std::make_unique<Command>(std::move(command)));
}

std::vector<const Command*> registeredCommands() {
    std::vector<const Command*> list;
    for (const auto& command : registry()) {
        list.push_back(command.get());
    }
    std::sort(list.begin(), list.end(),
              [](const Command* a, const Command* b) { return a->name < b->name; });
    return list;
}

bool Arguments::takeFlag(std::string_view name) {
    const std::size_t end = endOfOptions(m_args);
    for (std::size_t i = 0; i < end; ++i) {
        if (m_args[i] == name) {
            m_args.erase(m_args.begin() + static_cast<std::ptrdiff_t>(i));
            return true;
        }
    }
    return false;
}

std::optional<std::string> Arguments::takeOption(std::string_view name) {
    const std::size_t end = endOfOptions(m_args);
    const std::string prefix = std::string(name) + "=";
    for (std::size_t i = 0; i < end; ++i) {
        if (m_args[i] == name) {
            if (i + 1 >= end) {
                throw UsageError(std::string(name) + " needs a value");
            }
            std::string value = m_args[i + 1];
            m_args.erase(m_args.begin() + static_cast<std::ptrdiff_t>(i),
                         m_args.begin() + static_cast<std::ptrdiff_t>(i) + 2);
            return value;
        }
        if (m_args[i].rfind(prefix, 0) == 0) {
            std::string value = m_args[i].substr(prefix.size());
            m_args.erase(m_args.begin() + static_cast<std::ptrdiff_t>(i));
            return value;
        }
    }
    return std::nullopt;
}

std::optional<long long> Arguments::takeInteger(std::string_view name) {
    const auto text = takeOption(name);
    if (!text) {
        return std::nullopt;
    }
    long long value = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
    if (error != std::errc() || end != text->data() + text->size()) {
        throw UsageError(std::string(name) + " needs a whole number, not '" + *text + "'");
    }
    return value;
}

std::optional<double> Arguments::takeNumber(std::string_view name) {
    const auto text = takeOption(name);
    if (!text) {
        return std::nullopt;
    }
    try {
        std::size_t used = 0;
        const double value = std::stod(*text, &used);
        if (used == text->size()) {
            return value;
        }
    } catch (const std::exception&) {
        // Falls through to the usage error below.
    }
    throw UsageError(std::string(name) + " needs a number, not '" + *text + "'");
}

std::vector<std::string> Arguments::positionals() const {
    std::vector<std::string> list;
    bool optionsEnded = false;
    for (const std::string& arg : m_args) {
        if (!optionsEnded && arg == "--") {
            optionsEnded = true;
            continue;
        }
        if (!optionsEnded && arg.size() > 1 && arg.front() == '-') {
            throw UsageError("unknown option '" + arg + "'");
        }
        list.push_back(arg);
    }
    return list;
}

int fail(std::ostream& err, std::string_view message) {
    err << "sondrel-cli: " << terminalText(message) << '\n';
    return kExitFailure;
}

} // namespace sondrel::cli
